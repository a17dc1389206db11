#include "support/KWin.h"

#include "support/environment.h"
#include "support/files.h"
#include "support/holdsSoon.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QFile>

#include <array>
#include <cstring>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

/// The installed one has a capability, with which it would outlive a test that dies. Under another name it
/// refuses to run.
QString plainCopy(const QString &folder) {
    const QString copy = folder + QStringLiteral("/kwin_wayland");
    if (!QFile::copy(QStringLiteral("/usr/bin/kwin_wayland"), copy))
        ADD_FAILURE() << "There is no KWin";
    return copy;
}

QProcessEnvironment withoutPermissions(const QString &bus, const QString &home) {
    QProcessEnvironment environment = withoutDesktop();
    insert(environment, "HOME", home);
    insert(environment, "XDG_RUNTIME_DIR", home);
    insert(environment, "DBUS_SESSION_BUS_ADDRESS", bus);
    insert(environment, "KWIN_COMPOSE", QStringLiteral("O2")); // without OpenGL it gives no pictures
    insert(environment, "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS", QStringLiteral("1"));
    insert(environment, "KWIN_WAYLAND_NO_PERMISSION_CHECKS", QStringLiteral("1"));
    return environment;
}

QDBusMessage ask(const QString &bus, const QDBusMessage &question) {
    const QString name = QStringLiteral("asks-kwin");
    const QDBusMessage reply = QDBusConnection::connectToBus(bus, name).call(question);
    QDBusConnection::disconnectFromBus(name);
    return reply;
}

/// KWin's own report on itself, once it has begun to draw.
QString report(const QString &bus) {
    QString text;
    EXPECT_TRUE(holdsSoon([&] {
        text = ask(bus, QDBusMessage::createMethodCall(
                            QStringLiteral("org.kde.KWin"), QStringLiteral("/KWin"),
                            QStringLiteral("org.kde.KWin"), QStringLiteral("supportInformation")))
                   .arguments()
                   .value(0)
                   .toString();
        return text.contains(QStringLiteral("Compositing Type:"));
    })) << "KWin does not draw";
    return text;
}

/// Asks for a picture, which will come through the file.
QVariantMap order(const QString &bus, int file) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.KWin"), QStringLiteral("/org/kde/KWin/ScreenShot2"),
        QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("CaptureWorkspace"));
    message.setArguments({QVariantMap(), QVariant::fromValue(QDBusUnixFileDescriptor(file))});
    const QDBusMessage reply = ask(bus, message);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        ADD_FAILURE() << "KWin gives no picture: " << reply.errorMessage().toStdString();
        return {};
    }
    return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

} // namespace

KWin::KWin(int outputs) : socket_(runtime_.filePath(QStringLiteral("wayland"))) {
    const QStringList words{QStringLiteral("--virtual"),      QStringLiteral("--no-lockscreen"),
                            QStringLiteral("--width"),        QString::number(outputSize.width()),
                            QStringLiteral("--height"),       QString::number(outputSize.height()),
                            QStringLiteral("--output-count"), QString::number(outputs),
                            QStringLiteral("--socket"),       QFileInfo(socket_).fileName()};
    process_ = std::make_unique<ChildProcess>(plainCopy(runtime_.path()), words,
                                              withoutPermissions(bus_.address(), runtime_.path()));
    if (!holdsSoon([&] { return QFile::exists(socket_); }))
        ADD_FAILURE() << "KWin did not start: " << process_->process().readAllStandardError().toStdString();
    input_ = std::make_unique<FakeInput>(socket_);
    if (report(bus_.address()).contains(QStringLiteral("Compositing Type: OpenGL")))
        paintBackground();
    else
        skip();
}

/// KWin 6 draws outputs in memory with OpenGL only where there is a graphics device.
void KWin::skip() {
    GTEST_SKIP() << "This KWin gives no pictures: it draws without OpenGL, for it finds no graphics device.";
}

KWin::~KWin() = default;

QProcessEnvironment KWin::environment() const {
    QProcessEnvironment environment = withoutDesktop();
    insert(environment, "HOME", home_.path());
    insert(environment, "XDG_RUNTIME_DIR", home_.path());
    insert(environment, "WAYLAND_DISPLAY", socket_);
    insert(environment, "DBUS_SESSION_BUS_ADDRESS", bus_.address());
    overlookLeaksOfQt(environment, home_.path());
    return environment;
}

/// KWin by itself has none.
void KWin::paintBackground() {
    background_ = std::make_unique<ChildProcess>(
        QStringLiteral("swaybg"), QStringList{QStringLiteral("--color"), background().name()}, environment());
    const bool painted = holdsSoon([this] {
        const QImage all = picture();
        return all.pixelColor(0, 0) == background() && all.pixelColor(all.width() - 1, 0) == background();
    });
    EXPECT_TRUE(painted) << "KWin shows no background";
}

QImage KWin::picture() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const QVariantMap about = order(bus_.address(), ends[1]);
    ::close(ends[1]);
    QFile pixels;
    EXPECT_TRUE(pixels.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
    QImage image(about[QStringLiteral("width")].toInt(), about[QStringLiteral("height")].toInt(),
                 static_cast<QImage::Format>(about[QStringLiteral("format")].toInt()));
    const QByteArray bytes = pixels.readAll();
    if (bytes.size() == image.sizeInBytes())
        std::memcpy(image.bits(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
    else
        ADD_FAILURE() << "KWin's picture has " << bytes.size() << " bytes";
    return image;
}

void KWin::end() {
    input_.reset();
    process_.reset();
}

} // namespace pavonel::test
