#include "Platform/Linux/X11/X11Connection.h"

#include "X11/server.h"
#include "support/waitUntil.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

xcb_window_t makeWindow(X11Connection &x) {
    const xcb_window_t window = xcb_generate_id(x.xcb());
    xcb_create_window(x.xcb(), XCB_COPY_FROM_PARENT, window, x.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
}

/// Waits until the server has done all that was asked of it.
void sync(X11Connection &x) {
    const XReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(x.xcb(), xcb_get_input_focus(x.xcb()), nullptr));
}

} // namespace

TEST(X11Connection, no_server_gives_no_connection) {
    EXPECT_EQ(X11Connection::open(":65000"), nullptr);
    EXPECT_EQ(X11Connection::open("nonsense"), nullptr);
}

TEST(X11Connection, a_virtual_server_is_no_wayland_session) {
    EXPECT_FALSE(X11Connection::open(server().display())->isInsideWayland());
}

TEST(X11Connection, a_session_that_names_a_wayland_display_is_one) {
    const auto x = X11Connection::open(server().display());
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_TRUE(x->isInsideWayland());
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(x->isInsideWayland());
}

TEST(X11Connection, properties_are_read_by_name) {
    const auto x = X11Connection::open(server().display());
    const std::uint32_t numbers[] = {7, 8};
    const xcb_window_t window = makeWindow(*x);
    xcb_change_property(x->xcb(), XCB_PROP_MODE_REPLACE, window, x->atom("PAVONEL_NUMBERS"),
                        XCB_ATOM_CARDINAL, 32, 2, numbers);
    xcb_change_property(x->xcb(), XCB_PROP_MODE_REPLACE, window, x->atom("PAVONEL_BYTES"), XCB_ATOM_STRING, 8,
                        3, "abc");

    EXPECT_EQ(x->numbers(window, "PAVONEL_NUMBERS"), (std::vector<std::uint32_t>{7, 8}));
    EXPECT_EQ(x->number(window, "PAVONEL_NUMBERS"), 7U);
    EXPECT_TRUE(x->numbers(window, "PAVONEL_BYTES").empty()) << "another kind reads as empty";
    EXPECT_EQ(x->number(window, "PAVONEL_MISSING"), 0U);
}

TEST(X11Connection, a_window_of_a_client_that_died_reads_as_empty) {
    const auto x = X11Connection::open(server().display());
    auto other = X11Connection::open(server().display());
    const xcb_window_t window = makeWindow(*other);
    sync(*other);
    other.reset();
    server().run(QStringLiteral("xset"), {QStringLiteral("q")}); // the server has noticed by now

    const auto watch = x->watch(window, XCB_EVENT_MASK_PROPERTY_CHANGE); // an error, which comes as an event
    EXPECT_TRUE(waitUntil([&] { return x->numbers(window, "WM_STATE").empty(); }));
    QCoreApplication::processEvents();
    EXPECT_TRUE(x->isAlive());
    EXPECT_NE(x->atom("STILL_ANSWERS"), xcb_atom_t{XCB_ATOM_NONE});
}

TEST(X11Connection, events_read_along_with_a_reply_reach_the_listeners) {
    const auto x = X11Connection::open(server().display());
    int properties = 0;
    const auto listening = x->listen([&](const xcb_generic_event_t &event) {
        properties += (event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY;
    });
    const xcb_window_t window = makeWindow(*x);
    const auto watch = x->watch(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_change_property(x->xcb(), XCB_PROP_MODE_REPLACE, window, x->atom("PAVONEL_A"), XCB_ATOM_CARDINAL, 32,
                        0, nullptr);
    sync(*x); // reads the event too

    EXPECT_TRUE(waitUntil([&] { return properties == 1; }));
}

TEST(X11Connection, watches_of_one_window_add_up_and_end_one_by_one) {
    const auto x = X11Connection::open(server().display());
    const xcb_window_t window = makeWindow(*x);
    const auto selected = [&] {
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(x->xcb(), xcb_get_window_attributes(x->xcb(), window), nullptr));
        return attributes->your_event_mask;
    };

    const auto first = x->watch(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    auto second = x->watch(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    EXPECT_EQ(selected(), std::uint32_t{XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY});
    second.reset();
    EXPECT_EQ(selected(), std::uint32_t{XCB_EVENT_MASK_PROPERTY_CHANGE});
}

TEST(X11Connection, a_listener_may_end_itself_and_let_go_of_the_connection) {
    auto x = X11Connection::open(server().display());
    X11Connection::SubscriptionHandle listening;
    bool called = false;
    listening = x->listen([&](const xcb_generic_event_t &) {
        called = true;
        listening.reset();
        x.reset();
    });
    const xcb_window_t window = makeWindow(*x);
    const auto watch = x->watch(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    xcb_map_window(x->xcb(), window);
    x->flush();

    EXPECT_TRUE(waitUntil([&] { return called; }));
}

TEST(X11Connection, the_death_of_the_server_is_noticed_and_harmless) {
    auto dying = std::make_unique<XServer>();
    const auto x = X11Connection::open(dying->display());
    ASSERT_TRUE(x);

    dying.reset();

    EXPECT_TRUE(waitUntil([&] { return !x->isAlive(); }));
    EXPECT_TRUE(x->numbers(x->root(), "_NET_CLIENT_LIST").empty());
    EXPECT_EQ(x->atom("AFTERWARDS"), xcb_atom_t{XCB_ATOM_NONE});
    QCoreApplication::processEvents();
    EXPECT_FALSE(x->isAlive()) << "it does not come back";
}

} // namespace pavonel::test
