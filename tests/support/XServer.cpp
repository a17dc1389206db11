#include "support/XServer.h"

#include "support/generousTimeout.h"
#include "support/holdsSoon.h"
#include "support/owned.h"

#include <QThread>

#include <cstdlib>
#include <cstring>
#include <memory>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace pavonel::test {

namespace {

using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

Connection connectTo(const QByteArray &display) {
    return {xcb_connect(display.constData(), nullptr), &xcb_disconnect};
}

xcb_atom_t atom(xcb_connection_t *connection, const char *name) {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const auto reply =
        owned(xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, length, name), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool hasOwner(xcb_connection_t *connection, const char *selection) {
    const auto owner = owned(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atom(connection, selection)), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

bool hasState(xcb_connection_t *connection, xcb_window_t window) {
    const auto cookie = xcb_get_property(connection, 0, window, atom(connection, "WM_STATE"),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
    const auto state = owned(xcb_get_property_reply(connection, cookie, nullptr));
    return state && state->type != XCB_ATOM_NONE;
}

/// Managers announce themselves some time before they take care of windows, and lose those that open in
/// between. So a window of ours knocks until one answers.
bool managesWindows(xcb_connection_t *connection) {
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection, window);
    bool managed = false;
    for (int look = 0; look < 20 && !managed; ++look) {
        managed = hasState(connection, window);
        QThread::msleep(10);
    }
    xcb_destroy_window(connection, window);
    xcb_flush(connection);
    return managed;
}

/// The first line that a program writes to its standard output.
QByteArray firstLine(QProcess &process) {
    holdsSoon([&] { return process.canReadLine() || !process.waitForReadyRead(generousTimeout); });
    return process.readLine().trimmed();
}

} // namespace

XServer::XServer(QSize size) {
    const QString screen = QStringLiteral("%1x%2x24").arg(size.width()).arg(size.height());
    // -noreset: otherwise the monitors vanish with the last client. -r: a key that comes up late does not
    // repeat.
    server_ = std::make_unique<ChildProcess>(
        QStringLiteral("Xvfb"),
        QStringList{QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), screen, QStringLiteral("-noreset"), QStringLiteral("-r"),
                    QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    display_ = ':' + firstLine(server_->process());
    if (display_.size() < 2)
        ADD_FAILURE() << "The X server did not start: "
                      << server_->process().readAllStandardError().toStdString();
}

XServer::~XServer() = default;

QProcessEnvironment XServer::environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto *name : {"WAYLAND_DISPLAY", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME",
                             "DESKTOP_STARTUP_ID", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(display_));
    environment.insert(QStringLiteral("HOME"), home_.path());
    environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
    // No program here may find, or start, a message bus of somebody else.
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                       busAddress_.isEmpty() ? QStringLiteral("unix:path=/nonexistent")
                                             : QString::fromLatin1(busAddress_));
    return environment;
}

void XServer::becomeOurDisplay() const {
    qputenv("DISPLAY", display_);
    qputenv("QT_QPA_PLATFORM", "xcb");
    qunsetenv("WAYLAND_DISPLAY");
}

void XServer::setMonitors(const std::vector<QRect> &monitors) {
    const auto name = [](std::size_t index) { return QString(QChar(static_cast<char16_t>(u'A' + index))); };
    const auto stays = [&](std::size_t index) {
        return index < monitors_.size() && index < monitors.size() && monitors_[index] == monitors[index];
    };
    for (std::size_t index = 0; index < monitors_.size(); ++index) {
        if (!stays(index))
            run(QStringLiteral("xrandr"), {QStringLiteral("--delmonitor"), name(index)});
    }
    for (std::size_t index = 0; index < monitors.size(); ++index) {
        if (stays(index))
            continue;
        const QRect &at = monitors[index];
        const auto geometry = QStringLiteral("%1/500x%2/280+%3+%4") // the size in millimetres does not matter
                                  .arg(QString::number(at.width()), QString::number(at.height()),
                                       QString::number(at.x()), QString::number(at.y()));
        const QString output = index == 0 ? QStringLiteral("screen") : QStringLiteral("none"); // Xvfb has one
        run(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), name(index), geometry, output});
    }
    monitors_ = monitors;
}

void XServer::setMode(QSize size) {
    const QString width = QString::number(size.width());
    const QString height = QString::number(size.height());
    const QString mode = QStringLiteral("pavonel-%1x%2").arg(width, height);
    if (!modes_.contains(mode)) {
        // The timings matter to real screens only.
        run(QStringLiteral("xrandr"), {QStringLiteral("--newmode"), mode, QStringLiteral("60"), width, width,
                                       width, width, height, height, height, height});
        run(QStringLiteral("xrandr"), {QStringLiteral("--addmode"), QStringLiteral("screen"), mode});
        modes_.push_back(mode);
    }
    // Xvfb's screen has no size in millimetres, and no desktop may have none.
    run(QStringLiteral("xrandr"),
        {QStringLiteral("--fbmm"), QStringLiteral("500x280"), QStringLiteral("--output"),
         QStringLiteral("screen"), QStringLiteral("--mode"), mode});
}

void XServer::start(WindowManager manager) {
    stopWindowManager();
    const bool withCompositor = manager == WindowManager::xfwm4WithCompositor;
    if (manager == WindowManager::openbox) {
        windowManager_ = launch(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    } else {
        startMessageBus(); // xfwm4 reads its settings there
        windowManager_ =
            launch(QStringLiteral("xfwm4"),
                   {QStringLiteral("--sm-client-disable"),
                    withCompositor ? QStringLiteral("--compositor=on") : QStringLiteral("--compositor=off")});
    }
    waitForWindowManager(withCompositor);
}

void XServer::waitForWindowManager(bool withCompositor) {
    const auto connection = connectTo(display_);
    const bool manages = holdsSoon([&] {
        return hasOwner(connection.get(), "WM_S0") &&
               (!withCompositor || hasOwner(connection.get(), "_NET_WM_CM_S0")) &&
               managesWindows(connection.get());
    });
    if (!manages)
        ADD_FAILURE() << "The window manager does not manage: "
                      << windowManager_->process().readAllStandardError().toStdString();
}

void XServer::stopWindowManager() {
    windowManager_.reset();
}

void XServer::startMessageBus() {
    if (bus_)
        return;
    bus_ = launch(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                  QStringLiteral("--print-address")});
    busAddress_ = firstLine(bus_->process());
}

QByteArray XServer::run(const QString &program, const QStringList &arguments) {
    const auto result = ChildProcess::run(program, arguments, environment());
    if (result.status != 0)
        ADD_FAILURE() << program.toStdString() << ' ' << arguments.join(u' ').toStdString() << ": "
                      << result.errors.toStdString();
    return result.output;
}

std::unique_ptr<ChildProcess> XServer::launch(const QString &program, const QStringList &arguments) {
    return std::make_unique<ChildProcess>(program, arguments, environment());
}

QImage XServer::picture(std::optional<QRect> part) {
    const auto connection = connectTo(display_);
    if (xcb_connection_has_error(connection.get()))
        return {};
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    const QRect area = part.value_or(QRect(0, 0, screen->width_in_pixels, screen->height_in_pixels));
    const auto cookie = xcb_get_image(
        connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, static_cast<std::int16_t>(area.x()),
        static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
        static_cast<std::uint16_t>(area.height()), ~std::uint32_t{0});
    auto reply = owned(xcb_get_image_reply(connection.get(), cookie, nullptr));
    if (!reply)
        return {};
    uchar *const pixels = xcb_get_image_data(reply.get());
    return {pixels, area.width(), area.height(), QImage::Format_RGB32, std::free, reply.release()};
}

QColor XServer::colourAt(QPoint point) {
    const QImage pixel = picture(QRect(point, QSize(1, 1)));
    return pixel.isNull() ? QColor() : pixel.pixelColor(0, 0);
}

} // namespace pavonel::test
