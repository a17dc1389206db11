#include "X11/LayeredWindows.h"

namespace pavonel::test {

namespace {

class X11KeyboardFocusTest : public X11WindowLayersTest {};
class KeyboardUnderEveryManager : public UnderEveryManager {};

INSTANTIATE_TEST_SUITE_P(X11, KeyboardUnderEveryManager, everyManager, managerName);

} // namespace

TEST_P(KeyboardUnderEveryManager, the_keyboard_goes_to_the_break_and_back_to_the_window_that_had_it) {
    const auto editor = other.open({100, 100, 400, 300}, theirs);
    bringToFront(editor);
    auto overlays = showOverlays();
    layers.takeKeyboard(*overlays[0]->windowHandle());
    ASSERT_TRUE(waitUntil([&] { return other.focused() == overlays[0]->id(); }));

    server().xdotool({QStringLiteral("key"), QStringLiteral("x")});
    EXPECT_TRUE(waitUntil([&] { return overlays[0]->keyPresses == 1; }));
    EXPECT_EQ(other.keyPresses(), 0);

    layers.yieldKeyboard();
    overlays.clear();
    EXPECT_TRUE(waitUntil([&] { return other.focused() == editor; }));
    server().xdotool({QStringLiteral("key"), QStringLiteral("x")});
    EXPECT_TRUE(waitUntil([&] { return other.keyPresses() == 1; }));
}

TEST_P(KeyboardUnderEveryManager, the_break_takes_the_keyboard_back_from_a_window_that_opens) {
    const auto overlays = showOverlays();
    layers.takeKeyboard(*overlays[0]->windowHandle());
    ASSERT_TRUE(waitUntil([&] { return other.focused() == overlays[0]->id(); }));

    const auto fullscreen = other.open({0, 0, 5760, 1080}, theirs, XClient::Kind::fullscreen);
    other.focus(fullscreen);
    EXPECT_TRUE(waitUntil([&] { return other.focused() == overlays[0]->id(); }));
    EXPECT_TRUE(waitUntil([&] {
        server().xdotool({QStringLiteral("key"), QStringLiteral("x")});
        return overlays[0]->keyPresses > 0;
    }));
}

TEST_F(X11KeyboardFocusTest, a_program_that_insists_on_the_keyboard_gets_it) {
    const auto overlays = showOverlays();
    layers.takeKeyboard(*overlays[0]->windowHandle());
    ASSERT_TRUE(waitUntil([&] { return other.focused() == overlays[0]->id(); }));

    const auto insistent = other.open({100, 100, 400, 300}, theirs);
    settle();
    for (int round = 0; round < 6; ++round) {
        other.focus(insistent);
        settle();
    }
    EXPECT_EQ(other.focused(), insistent);
}

TEST_P(KeyboardUnderEveryManager, a_panel_lies_above_a_fullscreen_window_and_leaves_it_the_keyboard) {
    const auto fullscreen = other.open({0, 0, 5760, 1080}, theirs, XClient::Kind::fullscreen);
    bringToFront(fullscreen);
    const auto notice = panel({1400, 40, 300, 80});

    EXPECT_TRUE(becomesTop(*notice));
    const auto later = other.open({0, 0, 5760, 1080}, theirs, XClient::Kind::fullscreen);
    EXPECT_TRUE(waitUntil([&] { return other.geometry(later) == QRect(0, 0, 5760, 1080); }));
    EXPECT_TRUE(becomesTop(*notice));
    other.activate(fullscreen);
    EXPECT_TRUE(waitUntil([&] { return other.focused() == fullscreen; }));
    EXPECT_TRUE(becomesTop(*notice));
    EXPECT_EQ(other.focused(), fullscreen);
}

TEST_F(X11KeyboardFocusTest, the_keyboard_goes_to_the_active_window_when_the_previous_one_closed) {
    server().start(WindowManager::openbox);
    const auto first = other.open({100, 100, 400, 300}, theirs);
    const auto second = other.open({600, 100, 400, 300}, theirs);
    bringToFront(second);
    auto overlays = showOverlays();
    layers.takeKeyboard(*overlays[0]->windowHandle());
    ASSERT_TRUE(waitUntil([&] { return other.focused() == overlays[0]->id(); }));

    other.close(second);
    layers.yieldKeyboard();
    overlays.clear();
    EXPECT_TRUE(waitUntil([&] { return other.focused() == first; }));
}

} // namespace pavonel::test
