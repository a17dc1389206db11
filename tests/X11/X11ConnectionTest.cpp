#include "Platform/Linux/X11/X11Connection.h"

#include "Platform/Qt/QtMainLoop.h"
#include "X11/server.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QLocalServer>
#include <QTemporaryDir>
#include <QWindow>

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

void mark(X11Connection &x, xcb_window_t window) {
    xcb_change_property(x.xcb(), XCB_PROP_MODE_REPLACE, window, x.atom("PAVONEL_MARK"), XCB_ATOM_CARDINAL, 32,
                        0, nullptr);
}

} // namespace

TEST(X11Connection, no_server_gives_no_connection) {
    EXPECT_EQ(X11Connection::open(":65000"), nullptr);
    EXPECT_EQ(X11Connection::open("nonsense"), nullptr);
}

TEST(X11Connection, a_virtual_server_is_no_wayland_session) {
    EXPECT_FALSE(X11Connection::open(server().display())->isInsideWayland());
}

TEST(X11Connection, a_session_with_a_compositor_that_answers_is_one_of_wayland) {
    const QTemporaryDir folder;
    const auto x = X11Connection::open(server().display());
    QLocalServer compositor;
    ASSERT_TRUE(compositor.listen(folder.filePath(QStringLiteral("wayland-7"))));
    const QByteArray usual = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
    qputenv("WAYLAND_DISPLAY", "wayland-7");
    EXPECT_TRUE(x->isInsideWayland());
    qputenv("WAYLAND_DISPLAY", compositor.fullServerName().toLocal8Bit());
    EXPECT_TRUE(x->isInsideWayland()) << "it may be named with its path";
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(x->isInsideWayland());
    qputenv("XDG_RUNTIME_DIR", usual);
}

TEST(X11Connection, the_name_of_a_compositor_that_is_gone_makes_no_wayland_session) {
    const QTemporaryDir folder;
    const auto x = X11Connection::open(server().display());
    const QString socket = folder.filePath(QStringLiteral("wayland-7"));
    for (const bool leftBehind : {false, true}) {
        if (leftBehind)
            writeFile(socket, {});
        qputenv("WAYLAND_DISPLAY", socket.toLocal8Bit());
        EXPECT_FALSE(x->isInsideWayland());
        qunsetenv("WAYLAND_DISPLAY");
    }
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

TEST(X11Connection, a_list_longer_than_any_that_is_meant_is_cut) {
    const auto x = X11Connection::open(server().display());
    const xcb_window_t window = makeWindow(*x);
    const std::vector<std::uint32_t> many(1 << 16, 7);
    xcb_change_property(x->xcb(), XCB_PROP_MODE_REPLACE, window, x->atom("PAVONEL_NUMBERS"),
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(many.size()), many.data());
    EXPECT_EQ(x->numbers(window, "PAVONEL_NUMBERS").size(), X11Connection::mostNumbers);
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
    mark(*x, window);
    sync(*x); // reads the event too

    EXPECT_TRUE(waitUntil([&] { return properties == 1; }));
}

/// Whoever listens may have changed what the beats are about.
TEST(X11Connection, no_beat_waits_after_events_read_along_with_a_reply) {
    const auto x = X11Connection::open(server().display());
    const xcb_window_t window = makeWindow(*x);
    const auto watch = x->watch(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    sync(*x);
    QtMainLoop loop;
    QEventLoop running;
    int beats = 0;
    int waited = 0;
    const auto markAtEachBeat = [&] {
        mark(*x, window);
        sync(*x);
        if (++beats == 20)
            running.quit();
        return 100;
    };
    const auto timer = loop.everyDeferrable(0.05, {markAtEachBeat, [&](int times) { waited += times; }});
    running.exec();
    EXPECT_EQ(waited, 0);
}

TEST(X11Connection, what_was_asked_for_leaves_before_the_loop_sleeps) {
    const auto x = X11Connection::open(server().display());
    const auto onlooker = X11Connection::open(server().display());
    const xcb_window_t window = makeWindow(*x);
    const std::uint32_t number = 7;
    x->atom("PAVONEL_NUMBER"); // asked for now, so that no reply to it sends the rest
    xcb_change_property(x->xcb(), XCB_PROP_MODE_REPLACE, window, x->atom("PAVONEL_NUMBER"), XCB_ATOM_CARDINAL,
                        32, 1, &number);
    EXPECT_TRUE(waitUntil([&] { return onlooker->number(window, "PAVONEL_NUMBER") == number; }));
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

TEST(X11Connection, what_qt_asked_for_leaves_before_the_loop_sleeps) {
    const auto x = X11Connection::open(server().display());
    QWindow window;
    window.create();
    QGuiApplication::sync();
    const auto id = static_cast<xcb_window_t>(window.winId());
    const auto onlooker = X11Connection::open(server().display());
    ASSERT_EQ(onlooker->number(id, "_NET_WM_WINDOW_OPACITY"), 0U);

    window.setOpacity(0.5);
    EXPECT_TRUE(waitUntil([&] { return onlooker->number(id, "_NET_WM_WINDOW_OPACITY") != 0; }));
}

} // namespace pavonel::test
