#include "EndToEnd/Desktop.h"
#include "support/XClient.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Another client of the X server, that means harm or has gone mad, and the program beside it.
class HostileClient : public testing::Test {
protected:
    void expectABreak() {
        desktop.store({{QStringLiteral("microInterval"), 3},
                       {QStringLiteral("microDuration"), 2},
                       {QStringLiteral("preNotifySeconds"), 2}});
        desktop.startProgram();
        EXPECT_TRUE(waitUntil([this] { return desktop.shows("Pavonel Heads-up"); }));
        EXPECT_TRUE(desktop.waitForOverlays());
        EXPECT_TRUE(desktop.waitForNoOverlay());
        EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
        EXPECT_GE(desktop.statistics()[QStringLiteral("micro")].toInt(), 1);
    }

    void grow(xcb_window_t window, const char *property) {
        const QByteArray part(8'000'000, 'x');
        for (int i = 0; i < 13; ++i)
            xcb_change_property(client.xcb(), XCB_PROP_MODE_APPEND, window, client.atom(property),
                                XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(part.size()), part.data());
        ASSERT_TRUE(client.geometry(client.root())); // the server has them
    }

    Desktop desktop;
    XClient client{desktop.server().display()};
};

} // namespace

TEST_F(HostileClient, that_owns_selections_and_never_answers) {
    const xcb_window_t owner = client.open({0, 0, 10, 10}, Qt::gray, XClient::Kind::unmanaged);
    for (const char *selection : {"CLIPBOARD", "PRIMARY", "_NET_SYSTEM_TRAY_S0", "_XSETTINGS_S0"})
        xcb_set_selection_owner(client.xcb(), owner, client.atom(selection), XCB_CURRENT_TIME);
    ASSERT_TRUE(client.isViewable(owner));
    expectABreak();
}

TEST_F(HostileClient, that_opens_windows_by_the_thousand) {
    for (int i = 0; i < 3000; ++i) {
        const xcb_window_t window = xcb_generate_id(client.xcb());
        const std::uint32_t unmanaged = 1;
        xcb_create_window(client.xcb(), XCB_COPY_FROM_PARENT, window, client.root(), 0, 0, 10, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                          &unmanaged);
        xcb_map_window(client.xcb(), window);
    }
    ASSERT_GE(client.stack().size(), 3000U);
    expectABreak();
}

TEST_F(HostileClient, that_hangs_a_hundred_megabytes_on_windows) {
    const xcb_window_t window = client.open({100, 100, 400, 300}, Qt::gray);
    client.activate(window);
    ASSERT_TRUE(waitUntil([&] { return client.activeWindow() == window; }));
    for (const char *property : {"WM_CLASS", "WM_CLIENT_MACHINE", "_NET_WM_PID", "_NET_WM_WINDOW_TYPE"})
        grow(window, property);
    grow(client.root(), "RESOURCE_MANAGER");
    expectABreak();
}

} // namespace pavonel::test
