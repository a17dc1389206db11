#include "support/Sway.h"

#include "support/XClient.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/holdsSoon.h"
#include "support/waitUntil.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRect>

#include <algorithm>

#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

/// Sway refuses to run as root.
constexpr uid_t nobody = 65534;

const char configuration[] = "xwayland disable\n"
                             "default_border none\n"
                             "focus_follows_mouse no\n"
                             "output * bg %1 solid_color\n";

/// Sway does not make the names by which windows are called and closed.
void makeAtoms(const QByteArray &display) {
    XClient x(display);
    for (const auto *name : {"WM_PROTOCOLS", "WM_DELETE_WINDOW", "_NET_WM_NAME", "UTF8_STRING"})
        x.atom(name);
}

QRect rectOf(const QJsonValue &output) {
    const QJsonValue rect = output[QStringLiteral("rect")];
    return {rect[QStringLiteral("x")].toInt(), rect[QStringLiteral("y")].toInt(),
            rect[QStringLiteral("width")].toInt(), rect[QStringLiteral("height")].toInt()};
}

} // namespace

Sway::Sway(int outputs)
    : screen_(outputSize), socket_(runtime_.filePath(QStringLiteral("wayland-1"))),
      ipc_(runtime_.filePath(QStringLiteral("ipc"))) {
    makeAtoms(screen_.display());
    QProcessEnvironment environment = withoutDesktop();
    insert(environment, "HOME", runtime_.path());
    insert(environment, "XDG_RUNTIME_DIR", runtime_.path());
    insert(environment, "SWAYSOCK", ipc_);
    insert(environment, "DISPLAY", QString::fromLatin1(screen_.display()));
    insert(environment, "WLR_BACKENDS", QStringLiteral("x11"));
    insert(environment, "WLR_X11_OUTPUTS", QString::number(outputs));
    insert(environment, "WLR_LIBINPUT_NO_DEVICES", QStringLiteral("1"));
    insert(environment, "WLR_RENDERER", QStringLiteral("pixman"));
    const QString file = runtime_.filePath(QStringLiteral("config"));
    writeFile(file, QString::fromLatin1(configuration).arg(background().name()).toUtf8());
    QStringList words{QStringLiteral("sway"), QStringLiteral("--config"), file};
    if (::geteuid() == 0) {
        const QString user = QString::number(nobody);
        EXPECT_EQ(::chown(runtime_.path().toLocal8Bit().constData(), nobody, nobody), 0);
        words = QStringList{QStringLiteral("setpriv"), QStringLiteral("--reuid=") + user,
                            QStringLiteral("--regid=") + user, QStringLiteral("--clear-groups")} +
                words;
    }
    process_ = std::make_unique<ChildProcess>(words.takeFirst(), words, environment);
    if (!holdsSoon([&] { return QFile::exists(socket_) && QFile::exists(ipc_); }))
        ADD_FAILURE() << "sway did not start: " << process_->process().readAllStandardError().toStdString();
    input_ = std::make_unique<WlrInput>(socket_);
}

Sway::~Sway() = default;

QProcessEnvironment Sway::environment() const {
    QProcessEnvironment environment = withoutDesktop();
    insert(environment, "HOME", home_.path());
    insert(environment, "XDG_RUNTIME_DIR", home_.path());
    insert(environment, "WAYLAND_DISPLAY", socket_);
    insert(environment, "SWAYSOCK", ipc_);
    overlookLeaksOfQt(environment, home_.path());
    return environment;
}

void Sway::becomeOurDisplay() const {
    qputenv("WAYLAND_DISPLAY", socket_.toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home_.path().toLocal8Bit());
    qunsetenv("DISPLAY");
    qunsetenv("QT_QPA_PLATFORM");
}

QByteArray Sway::run(const QString &program, const QStringList &arguments) {
    const auto result = ChildProcess::run(program, arguments, environment());
    if (result.status != 0)
        ADD_FAILURE() << program.toStdString() << ' ' << arguments.join(u' ').toStdString() << ": "
                      << result.output.toStdString() << result.errors.toStdString();
    return result.output;
}

void Sway::command(const QString &command) {
    run(QStringLiteral("swaymsg"), {command});
}

QJsonDocument Sway::ask(const QString &type) {
    return QJsonDocument::fromJson(
        run(QStringLiteral("swaymsg"), {QStringLiteral("--raw"), QStringLiteral("--type"), type}));
}

bool Sway::addOutput() {
    const auto result =
        ChildProcess::run(QStringLiteral("swaymsg"), {QStringLiteral("create_output")}, environment());
    if (result.status == 0)
        return true;
    EXPECT_TRUE(waitUntil([this] { return !process_->isRunning(); })) << result.errors.toStdString();
    return false;
}

/// By the command for it, or else by asking the window in which it is shown to close: a newer sway ends when
/// that happens to its last one.
void Sway::removeOutput(const QString &name) {
    if (ChildProcess::run(QStringLiteral("swaymsg"), {QStringLiteral("output %1 unplug").arg(name)},
                          environment())
            .status == 0)
        return; // older ones do not know the command
    XClient x(screen_.display());
    const auto windows = x.stack();
    const auto window = std::ranges::find_if(
        windows, [&](xcb_window_t each) { return x.bytes(each, "_NET_WM_NAME").endsWith(name.toUtf8()); });
    if (window == windows.end())
        ADD_FAILURE() << "There is no output " << name.toStdString();
    else
        x.askToClose(*window);
}

QSize Sway::layout() {
    QRect whole;
    const QJsonArray outputs = ask(QStringLiteral("get_outputs")).array();
    for (const QJsonValue &output : outputs)
        whole |= rectOf(output);
    return whole.size();
}

void Sway::pointAt(QPoint point) {
    input_->pointAt(point, layout());
}

std::unique_ptr<ChildProcess> Sway::launch(const QString &program, const QStringList &arguments) {
    return std::make_unique<ChildProcess>(program, arguments, environment());
}

QImage Sway::picture(const QString &output) {
    QStringList arguments{QStringLiteral("-t"), QStringLiteral("ppm"), QStringLiteral("-")};
    if (!output.isEmpty())
        arguments = QStringList{QStringLiteral("-o"), output} + arguments;
    return QImage::fromData(run(QStringLiteral("grim"), arguments), "ppm");
}

void Sway::end() {
    input_.reset();
    process_.reset();
}

} // namespace pavonel::test
