#include "Gnome/GnomeShell.h"

#include "support/environment.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace pavonel::test {

namespace {

const QString uuid = QStringLiteral("pavonel@pavonel.org");
const QString connectionName = QStringLiteral("gnome");

/// Nothing that moves, pops up or has a picture behind it.
const char settings[] = "[org/gnome/shell]\n"
                        "welcome-dialog-last-shown-version='999'\n"
                        "enabled-extensions=@as [%1]\n"
                        "[org/gnome/desktop/background]\n"
                        "picture-uri=''\n"
                        "picture-uri-dark=''\n"
                        "primary-color='%2'\n"
                        "[org/gnome/desktop/interface]\n"
                        "enable-animations=false\n"
                        "[org/gnome/desktop/notifications]\n"
                        "show-banners=false\n";

/// The Shell insists that everybody may put sockets there; an X server that came first may have made it.
void openSocketsFolder() {
    constexpr auto path = "/tmp/.X11-unix";
    constexpr mode_t everybodys = 01777;
    ::mkdir(path, everybodys);
    ::chmod(path, everybodys);
}

QString withoutQuotes(const QString &json) {
    return json.mid(1, json.size() - 2);
}

} // namespace

GnomeShell::GnomeShell(Extension extension)
    : connection_(QDBusConnection::connectToBus(bus_.address(), connectionName)) {
    openSocketsFolder();
    prepareHome(extension);
    logIn();
    startShell();
    makeDevices();
}

GnomeShell::~GnomeShell() {
    process_.reset();
    QDBusConnection::disconnectFromBus(connectionName);
}

bool GnomeShell::isThere() {
    return !QStandardPaths::findExecutable(QStringLiteral("gnome-shell")).isEmpty();
}

void GnomeShell::prepareHome(Extension extension) {
    const bool isEnabled = extension == Extension::enabled;
    writeFile(settingsFolder() + QStringLiteral("/settings/keyfile"),
              QString::fromLatin1(settings)
                  .arg(isEnabled ? QStringLiteral("'%1'").arg(uuid) : QString(), background().name())
                  .toUtf8());
    writeFile(home_.filePath(QStringLiteral("suppressions")), "leak:libwayland-client.so\n");
    if (extension == Extension::missing)
        return;
    const QString folder = home_.filePath(QStringLiteral(".local/share/gnome-shell/extensions"));
    EXPECT_TRUE(QDir().mkpath(folder));
    EXPECT_TRUE(QFile::link(QStringLiteral(PAVONEL_SOURCE_DIR "/gnome/") + uuid, folder + u'/' + uuid));
}

/// The Shell does not run without a session of the login manager.
void GnomeShell::logIn() {
    const auto tell = [this](const char *method, const QVariantList &what) {
        auto message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.DBus.Mock"), QString::fromLatin1(method));
        message.setArguments(what);
        const QDBusMessage reply = logind_.connection().call(message);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    };
    const QString seat = QStringLiteral("seat0");
    const QString user = QStringLiteral("user");
    tell("AddSeat", {seat});
    tell("AddUser", {::getuid(), user, true});
    tell("AddSession", {QStringLiteral("c1"), seat, ::getuid(), user, true});
}

void GnomeShell::startShell() {
    const QString size = QStringLiteral("%1x%2").arg(outputSize.width()).arg(outputSize.height());
    QProcessEnvironment ofShell = environment();
    for (const auto *name : {"DISPLAY", "XAUTHORITY", "WAYLAND_DISPLAY"})
        ofShell.remove(QString::fromLatin1(name));
    process_ = std::make_unique<ChildProcess>(
        QStringLiteral("gnome-shell"),
        QStringList{QStringLiteral("--headless"), QStringLiteral("--wayland"),
                    QStringLiteral("--unsafe-mode"),
                    QStringLiteral("--wayland-display=") + home_.filePath(QStringLiteral("wayland-1")),
                    QStringLiteral("--virtual-monitor"), size, QStringLiteral("--virtual-monitor"), size},
        ofShell);
    const auto isUp = [this] {
        QDBusMessage question = QDBusMessage::createMethodCall(
            QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
            QStringLiteral("org.gnome.Shell"), QStringLiteral("Eval"));
        question << QStringLiteral(
            "!Main.layoutManager._startingUp && (Main.overview.hide() || !Main.overview.visible)");
        return connection_.call(question).arguments().value(1).toString() == u"true";
    };
    if (!waitUntil([&] { return isUp() || !process_->isRunning(); }) || !process_->isRunning())
        ADD_FAILURE() << "GNOME Shell did not start: "
                      << process_->process().readAllStandardError().toStdString();
    display_ = withoutQuotes(eval(QStringLiteral("imports.gi.GLib.getenv('DISPLAY')")));
    authority_ = withoutQuotes(eval(QStringLiteral("imports.gi.GLib.getenv('XAUTHORITY')")));
}

/// The first key of a new keyboard is lost.
void GnomeShell::makeDevices() {
    act(QStringLiteral("const {Clutter, GLib} = imports.gi;"
                       "const seat = Clutter.get_default_backend().get_default_seat();"
                       "const make = type => seat.create_virtual_device(type);"
                       "global.test = {now: () => GLib.get_monotonic_time(),"
                       "keys: make(Clutter.InputDeviceType.KEYBOARD_DEVICE),"
                       "pointer: make(Clutter.InputDeviceType.POINTER_DEVICE)}"));
    press({QStringLiteral("Shift_L")});
}

QProcessEnvironment GnomeShell::environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto *name : {"XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    insert(environment, "HOME", home_.path());
    insert(environment, "XDG_CONFIG_HOME", home_.filePath(QStringLiteral(".config")));
    insert(environment, "XDG_DATA_HOME", home_.filePath(QStringLiteral(".local/share")));
    insert(environment, "XDG_CACHE_HOME", home_.filePath(QStringLiteral(".cache")));
    insert(environment, "XDG_RUNTIME_DIR", home_.path());
    insert(environment, "XDG_SESSION_ID", QStringLiteral("c1"));
    insert(environment, "DBUS_SYSTEM_BUS_ADDRESS", logind_.address());
    insert(environment, "DBUS_SESSION_BUS_ADDRESS", bus_.address());
    insert(environment, "GSETTINGS_BACKEND", QStringLiteral("keyfile"));
    insert(environment, "NO_AT_BRIDGE", QStringLiteral("1"));
    insert(environment, "LSAN_OPTIONS",
           QStringLiteral("print_suppressions=0:suppressions=") +
               home_.filePath(QStringLiteral("suppressions")));
    insert(environment, "WAYLAND_DISPLAY", home_.filePath(QStringLiteral("wayland-1")));
    insert(environment, "DISPLAY", display_);
    insert(environment, "XAUTHORITY", authority_);
    return environment;
}

QString GnomeShell::eval(const QString &script) {
    QDBusMessage question =
        QDBusMessage::createMethodCall(QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
                                       QStringLiteral("org.gnome.Shell"), QStringLiteral("Eval"));
    question << script;
    const QDBusMessage reply = connection_.call(question);
    if (!reply.arguments().value(0).toBool())
        ADD_FAILURE() << script.toStdString() << ": " << reply.errorMessage().toStdString()
                      << reply.arguments().value(1).toString().toStdString();
    return reply.arguments().value(1).toString();
}

void GnomeShell::act(const QString &script) {
    eval(QStringLiteral("(() => {%1})()").arg(script));
}

void GnomeShell::press(const QStringList &keys) {
    act(QStringLiteral(
            "const keys = '%1'.split(' ').map(name => imports.gi.Clutter['KEY_' + name]);"
            "for (const key of keys) global.test.keys.notify_keyval(global.test.now(), key, 1);"
            "for (const key of keys.reverse()) global.test.keys.notify_keyval(global.test.now(), key, 0)")
            .arg(keys.join(u' ')));
}

/// The first motion of a new pointer may be lost.
void GnomeShell::pointAt(QPoint point) {
    const auto move = QStringLiteral("global.test.pointer.notify_absolute_motion(global.test.now(), %1, %2)");
    const auto isThere = QStringLiteral("global.get_pointer()[0] === %1 && global.get_pointer()[1] === %2");
    EXPECT_TRUE(waitUntil([&] {
        act(move.arg(point.x()).arg(point.y()));
        return eval(isThere.arg(point.x()).arg(point.y())) == u"true";
    }));
}

void GnomeShell::click(QPoint point) {
    pointAt(point);
    act(QStringLiteral(
        "for (const state of [1, 0])"
        "global.test.pointer.notify_button(global.test.now(), imports.gi.Clutter.BUTTON_PRIMARY, state)"));
}

bool GnomeShell::takesClicks(const QString &title, QPoint point) {
    const auto script =
        QStringLiteral("(() => {"
                       "const mode = imports.gi.Clutter.PickMode.REACTIVE;"
                       "let actor = global.stage.get_actor_at_pos(mode, %1, %2);"
                       "while (actor && !actor.meta_window) actor = actor.get_parent();"
                       "return actor !== null && actor.meta_window.get_title() === '%3' })()");
    return eval(script.arg(point.x()).arg(point.y()).arg(title)) == u"true";
}

void GnomeShell::setOutputs(int count) {
    const auto call = [this](const QString &method, const QStringList &arguments) {
        const QString name = QStringLiteral("org.gnome.Mutter.DisplayConfig");
        const auto result = ChildProcess::run(
            QStringLiteral("gdbus"),
            QStringList{QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"), name,
                        QStringLiteral("--object-path"), QStringLiteral("/org/gnome/Mutter/DisplayConfig"),
                        QStringLiteral("--method"), name + u'.' + method} +
                arguments,
            environment());
        EXPECT_EQ(result.status, 0) << result.errors.toStdString();
        return QString::fromUtf8(result.output);
    };
    const auto serial = QRegularExpression(QStringLiteral("\\(uint32 (\\d+)"))
                            .match(call(QStringLiteral("GetCurrentState"), {}))
                            .captured(1);
    QStringList monitors;
    for (int index = 0; index < count; ++index)
        monitors.append(QStringLiteral("(%1, 0, 1.0, 0, %2, [('Meta-%3', '%4x%5@60.000', {})])")
                            .arg(index * outputSize.width())
                            .arg(index == 0 ? QStringLiteral("true") : QStringLiteral("false"))
                            .arg(index)
                            .arg(outputSize.width())
                            .arg(outputSize.height()));
    call(QStringLiteral("ApplyMonitorsConfig"),
         {serial, QStringLiteral("1"), u'[' + monitors.join(u',') + u']', QStringLiteral("{}")});
}

std::unique_ptr<ChildProcess> GnomeShell::startNotifications() {
    auto program = std::make_unique<ChildProcess>(
        QStringLiteral("gjs"),
        QStringList{QStringLiteral("/usr/share/gnome-shell/org.gnome.Shell.Notifications")}, environment());
    EXPECT_TRUE(waitUntil([this] {
        return connection_.interface()
            ->isServiceRegistered(QStringLiteral("org.freedesktop.Notifications"))
            .value();
    })) << program->process().readAllStandardError().toStdString();
    return program;
}

bool GnomeShell::hasWindow(const QString &title) {
    return eval(QStringLiteral("global.get_window_actors().some(a => a.meta_window.title === '%1')")
                    .arg(title)) == u"true";
}

bool GnomeShell::hasFocus(const QString &title) {
    return eval(QStringLiteral("global.display.focus_window?.title === '%1'").arg(title)) == u"true";
}

QImage GnomeShell::picture() {
    const QString path = home_.filePath(QStringLiteral("picture.png"));
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("/org/gnome/Shell/Screenshot"),
        QStringLiteral("org.gnome.Shell.Screenshot"), QStringLiteral("Screenshot"));
    call << false << false << path;
    const QDBusMessage reply = connection_.call(call);
    if (!reply.arguments().value(0).toBool())
        ADD_FAILURE() << "No picture: " << reply.errorMessage().toStdString();
    return QImage(path).convertToFormat(QImage::Format_RGB32);
}

} // namespace pavonel::test
