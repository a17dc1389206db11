#include "EndToEnd/WindowTree.h"

#include "support/owned.h"

#include <cstring>
#include <limits>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace pavonel::test {

void WindowTree::Disconnect::operator()(xcb_connection_t *connection) const {
    xcb_disconnect(connection);
}

WindowTree::WindowTree(const QByteArray &display) : connection_(xcb_connect(display.constData(), nullptr)) {
    if (xcb_connection_has_error(connection_.get()))
        ADD_FAILURE() << "No X server answers on " << display.toStdString();
    else
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
}

WindowTree::~WindowTree() = default;

std::vector<SeenWindow> WindowTree::visible() {
    std::vector<SeenWindow> seen;
    collect(root_, seen);
    return seen;
}

/// Windows come and go meanwhile: what does not answer any more is left out.
void WindowTree::collect(std::uint32_t window, std::vector<SeenWindow> &seen) {
    auto *c = connection_.get();
    const auto tree = owned(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
    if (!tree)
        return;
    const auto *children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto child = children[i];
        const auto attributes =
            owned(xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, child), nullptr));
        if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        const auto geometry = owned(xcb_get_geometry_reply(c, xcb_get_geometry(c, child), nullptr));
        const auto origin = owned(
            xcb_translate_coordinates_reply(c, xcb_translate_coordinates(c, child, root_, 0, 0), nullptr));
        const QString name = title(child);
        if (geometry && origin && !name.isEmpty()) {
            seen.push_back(
                {child, name, QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height)});
        }
        collect(child, seen);
    }
}

QString WindowTree::title(std::uint32_t window) {
    auto *c = connection_.get();
    const auto cookie = xcb_get_property(c, 0, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 0, 256);
    const auto reply = owned(xcb_get_property_reply(c, cookie, nullptr));
    if (!reply)
        return {};
    return QString::fromUtf8(static_cast<const char *>(xcb_get_property_value(reply.get())),
                             xcb_get_property_value_length(reply.get()));
}

double WindowTree::opacity(const SeenWindow &window) {
    auto *c = connection_.get();
    const auto cookie =
        xcb_get_property(c, 0, window.id, atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL, 0, 1);
    const auto reply = owned(xcb_get_property_reply(c, cookie, nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(std::uint32_t))
        return 1;
    std::uint32_t asked = 0;
    std::memcpy(&asked, xcb_get_property_value(reply.get()), sizeof asked);
    return asked / static_cast<double>(std::numeric_limits<std::uint32_t>::max());
}

std::uint32_t WindowTree::atom(const char *name) {
    const auto cookie =
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto reply = owned(xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
    return reply ? reply->atom : 0;
}

std::uint32_t WindowTree::openFullscreen(const QString &title, const QRect &frame, const QColor &colour) {
    auto *c = connection_.get();
    const auto window = xcb_generate_id(c);
    const std::uint32_t background = colour.rgb() & 0xffffff;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(frame.x()),
                      static_cast<std::int16_t>(frame.y()), static_cast<std::uint16_t>(frame.width()),
                      static_cast<std::uint16_t>(frame.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL, &background);
    const QByteArray name = title.toUtf8();
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8,
                        static_cast<std::uint32_t>(name.size()), name.constData());
    const std::uint32_t fullscreen = atom("_NET_WM_STATE_FULLSCREEN");
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, 1,
                        &fullscreen);
    xcb_map_window(c, window);
    xcb_flush(c);
    return window;
}

} // namespace pavonel::test
