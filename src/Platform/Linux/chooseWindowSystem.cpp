#include "Platform/GivenEnvironment.h"
#include "Platform/Linux/Wayland/LayerShellOffer.h"
#include "Platform/WindowSystem.h"

#include <QLoggingCategory>

#include <memory>

#include <xcb/xcb.h>

namespace pavonel {

namespace {

bool xServerAnswers() {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, nullptr), &xcb_disconnect);
    return xcb_connection_has_error(connection.get()) == 0;
}

/// With these Qt leaves the windows of the break and the panels to us, and believes where we move them to.
void prepareQtForLayerShell() {
    setForUsAlone("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
    setForUsAlone("QT_WAYLAND_DISABLE_FIXED_POSITIONS", "1");
}

/// OpenGL would cost half of our memory.
void drawWithoutOpenGl() {
    setForUsAlone("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "none");
}

/// Qt says in two lines that it has no OpenGL integration called "none". And since 6.8 it says of each call
/// over the bus that no slot takes its arguments, where one takes the whole call.
void silenceQtWhereAllIsWell() {
    QLoggingCategory::setFilterRules(
        QStringLiteral("qt.qpa.wayland.warning=false\nqt.dbus.integration.warning=false"));
}

/// The X server of a Wayland session can put windows above all others where the compositor cannot.
QByteArray preferred(bool layerShell) {
    if (layerShell)
        return "wayland;xcb";
    return xServerAnswers() ? "xcb;wayland" : "wayland";
}

} // namespace

void chooseWindowSystem() {
    silenceQtWhereAllIsWell();
    if (!wayland::isOffered())
        return; // Qt finds an X server by itself
    drawWithoutOpenGl();
    const bool layerShell = wayland::offersLayerShell();
    if (layerShell)
        prepareQtForLayerShell();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        setForUsAlone("QT_QPA_PLATFORM", preferred(layerShell));
}

} // namespace pavonel
