#include "support/XClient.h"

#include "support/generousTimeout.h"
#include "support/owned.h"

#include <QDeadlineTimer>
#include <QThread>

#include <cstring>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {} // namespace

XClient::XClient(const QByteArray &display)
    : connection_(xcb_connect(display.constData(), nullptr)), root_(XCB_WINDOW_NONE) {
    if (xcb_connection_has_error(connection_))
        ADD_FAILURE() << "no X server on " << display.toStdString();
    else
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

XClient::~XClient() {
    xcb_disconnect(connection_);
}

xcb_atom_t XClient::atom(const char *name) {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const auto reply =
        owned(xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, name), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void XClient::setAtoms(xcb_window_t window, const char *property, const char *value) {
    const xcb_atom_t valueAtom = atom(value);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_ATOM, 32, 1,
                        &valueAtom);
}

/// Until the server has done all that was asked of it.
void XClient::sync() {
    focused();
}

xcb_window_t XClient::open(const QRect &at, const QColor &colour, Kind kind) {
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::uint32_t values[] = {colour.rgb() & 0xffffffU, kind == Kind::unmanaged,
                                    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(at.x()),
                      static_cast<std::int16_t>(at.y()), static_cast<std::uint16_t>(at.width()),
                      static_cast<std::uint16_t>(at.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values);
    // The place is the user's wish (1), so that managers put the window there.
    const std::uint32_t hints[18] = {1, static_cast<std::uint32_t>(at.x()),
                                     static_cast<std::uint32_t>(at.y())};
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 5,
                        "other");
    if (kind == Kind::fullscreen)
        setAtoms(window, "_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
    if (kind == Kind::dock)
        setAtoms(window, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK");
    if (kind == Kind::desktop)
        setAtoms(window, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP");
    xcb_map_window(connection_, window);
    sync();
    const QDeadlineTimer deadline(generousTimeout);
    while (!isViewable(window) && !deadline.hasExpired())
        QThread::msleep(2);
    if (!isViewable(window))
        ADD_FAILURE() << "the window did not open";
    return window;
}

xcb_window_t XClient::openDock(const QRect &at, const std::vector<std::uint32_t> &partial) {
    const xcb_window_t window = open(at, Qt::darkGray, Kind::dock);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STRUT_PARTIAL"),
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(partial.size()), partial.data());
    sync();
    return window;
}

void XClient::close(xcb_window_t window) {
    xcb_destroy_window(connection_, window);
    sync();
}

void XClient::move(xcb_window_t window, const QRect &to) {
    const std::int32_t values[] = {to.x(), to.y(), to.width(), to.height()};
    xcb_configure_window(connection_, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    sync();
}

void XClient::raise(xcb_window_t window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    sync();
}

void XClient::focus(xcb_window_t window) {
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    sync();
}

void XClient::askToClose(xcb_window_t window) {
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("WM_PROTOCOLS");
    message.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<char *>(&message));
    sync();
}

void XClient::activate(xcb_window_t window) {
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2; // from a pager
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&message));
    sync();
}

bool XClient::grabKey(xcb_keycode_t key, std::uint16_t modifiers) {
    const auto cookie =
        xcb_grab_key_checked(connection_, 0, root_, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return !owned(xcb_request_check(connection_, cookie));
}

xcb_window_t XClient::focused() {
    const auto reply =
        owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

std::vector<xcb_window_t> XClient::stack() {
    const auto tree = owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t XClient::topAt(QPoint point) {
    const auto windows = stack();
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        const auto at = geometry(*window);
        if (at && at->contains(point) && isViewable(*window))
            return *window;
    }
    return XCB_WINDOW_NONE;
}

xcb_window_t XClient::topLevelOf(xcb_window_t window) {
    for (;;) {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
        if (!tree)
            return XCB_WINDOW_NONE;
        if (tree->parent == root_ || tree->parent == XCB_WINDOW_NONE)
            return window;
        window = tree->parent;
    }
}

bool XClient::isViewable(xcb_window_t window) {
    const auto attributes = owned(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::optional<QRect> XClient::geometry(xcb_window_t window) {
    const auto size =
        owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, root_, 0, 0), nullptr));
    if (!size || !place)
        return std::nullopt;
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

xcb_window_t XClient::activeWindow() {
    const auto cookie =
        xcb_get_property(connection_, 0, root_, atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < 4)
        return XCB_WINDOW_NONE;
    return *static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()));
}

QByteArray XClient::bytes(xcb_window_t window, const char *property) {
    const auto cookie =
        xcb_get_property(connection_, 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

int XClient::keyPresses() {
    readEvents();
    return keyPresses_;
}

int XClient::clicks() {
    readEvents();
    return clicks_;
}

void XClient::readEvents() {
    sync();
    while (const auto event = owned(xcb_poll_for_event(connection_))) {
        const int type = event->response_type & 0x7f;
        keyPresses_ += type == XCB_KEY_PRESS;
        clicks_ += type == XCB_BUTTON_PRESS;
    }
}

} // namespace pavonel::test
