#include "Gnome/GnomeDesktop.h"

#include "support/pixels.h"
#include "support/waitUntil.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QFile>

#include <utility>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// To its very edges; the top bar is black, which the break screen is nowhere.
bool isCovered(const QImage &picture, const QRect &screen) {
    constexpr int topBarHeight = 20; // it is some pixels higher
    return picture.rect().contains(screen) && !shows(picture, screen, GnomeShell::background()) &&
           !shows(picture, screen, OtherWindow::colour()) &&
           !shows(picture, QRect(screen.topLeft(), QSize(screen.width(), topBarHeight)), Qt::black);
}

} // namespace

GnomeDesktop::GnomeDesktop(GnomeShell::Extension extension)
    : GnomeDesktop(std::make_unique<GnomeShell>(extension)) {}

GnomeDesktop::GnomeDesktop(std::unique_ptr<GnomeShell> shell)
    : ProgramAtHome(shell->environment()), shell_(std::move(shell)) {
    const QDir config = QFileInfo(storePath()).dir().filePath(QStringLiteral(".."));
    EXPECT_TRUE(QFile::link(shell_->settingsFolder(), config.filePath(QStringLiteral("glib-2.0"))));
}

GnomeDesktop::~GnomeDesktop() {
    stopProgram();
}

void GnomeDesktop::takeBreak() {
    EXPECT_TRUE(waitUntil([this] {
        return call(u"org.pavonel.Pavonel1"_s, u"TakeMicroBreak"_s, {}).type() == QDBusMessage::ReplyMessage;
    }));
}

QVariant GnomeDesktop::status(const char *property) {
    const QDBusMessage reply = call(u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                                    {u"org.pavonel.Pavonel1"_s, QString::fromLatin1(property)});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

QDBusMessage GnomeDesktop::call(const QString &interface, const QString &method,
                                const QVariantList &arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.pavonel.Pavonel"_s, u"/org/pavonel/Pavonel"_s,
                                                  interface, method);
    message.setArguments(arguments);
    return shell_->bus().call(message);
}

bool GnomeDesktop::waitForBreak(int outputs) {
    std::vector<QRect> screens;
    for (int index = 0; index < outputs; ++index)
        screens.push_back(screen(index));
    return waitUntil([&] { return showsBreak(shell_->picture(), screens, isCovered) || !isRunning(); }) &&
           isRunning();
}

bool GnomeDesktop::waitForNoBreak() {
    return waitUntil([&] {
        const QImage picture = shell_->picture();
        return !isCovered(picture, screen(0)) && !isCovered(picture, screen(1));
    });
}

QByteArray GnomeDesktop::complaints() {
    return process().readAllStandardError();
}

} // namespace pavonel::test
