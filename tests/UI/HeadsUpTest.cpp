#include "UI/Controls/Button.h"
#include "UI/Panels/HeadsUpController.h"
#include "support/Scenario.h"
#include "support/Styled.h"
#include "support/windows.h"

#include <QEnterEvent>

#include <map>
#include <utility>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr auto title = "Pavonel Heads-up";

class HeadsUp : public ::testing::Test {
protected:
    Scenario scenario;
    Styled styled{scenario.platform};
    HeadsUpController headsUp{scenario.platform, scenario.platform.notices, scenario.controller,
                              scenario.settings};

    void show(BreakKind kind = BreakKind::micro, const QString &text = QStringLiteral("Micro break")) {
        headsUp.show(kind, text);
    }

    /// As the program connects it, up to the notice of the first micro break.
    void runUpToNotice() {
        scenario.controller.onHeadsUp = [this](BreakKind kind, const QString &text) {
            headsUp.show(kind, text);
        };
        scenario.controller.onHeadsUpDismiss = [this] { headsUp.hide(); };
        scenario.advance(1170);
    }

    static QWidget *panel() { return shownWindow(title); }

    static Button *button(const QString &text) {
        for (auto *candidate : childrenOf<Button>(panel())) {
            if (candidate->text() == text || candidate->accessibleName() == text)
                return candidate;
        }
        return nullptr;
    }

    /// What a user sees of the buttons, from left to right.
    static QStringList buttonTexts() {
        std::map<int, QString> texts;
        for (const auto *candidate : childrenOf<Button>(panel())) {
            if (candidate->isVisible() && !candidate->text().isEmpty())
                texts.emplace(candidate->x(), candidate->text());
        }
        QStringList inOrder;
        for (const auto &[left, text] : texts)
            inOrder.append(text);
        return inOrder;
    }

    void clickOn(const QString &text) {
        click(*button(text));
        scenario.platform.loop.advance(0);
    }

    static QImage picture() { return panel()->grab(panel()->contentsRect()).toImage(); }
};

const QStringList allButtons{QStringLiteral("Start now"), QStringLiteral("+1 min"), QStringLiteral("+5 min"),
                             QStringLiteral("Skip")};

} // namespace

TEST_F(HeadsUp, stands_in_the_right_upper_corner_18_points_from_the_visible_frame) {
    scenario.platform.fakeScreens.screens = {
        {QStringLiteral("A"), {0, 0, 1920, 1080}, {60, 24, 1820, 1000}, true}};
    show();
    EXPECT_EQ(slabOf(panel()), QRect(1880 - 340 - 18, 24 + 18, 340, 132));
}

TEST_F(HeadsUp, stands_on_the_main_screen) {
    scenario.platform.fakeScreens.screens = {
        {QStringLiteral("A"), {0, 0, 1920, 1080}, {0, 0, 1920, 1080}, false},
        {QStringLiteral("B"), {1920, 200, 1280, 720}, {1920, 200, 1280, 690}, true}};
    show();
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(3200 - 340 - 18, 218));
    EXPECT_EQ(scenario.platform.layers.assignments.back().screen.name, QStringLiteral("B"));
}

TEST_F(HeadsUp, it_follows_its_screen_wherever_the_user_works_by_now) {
    auto &screens = scenario.platform.fakeScreens.screens;
    show();
    screens = {{QStringLiteral("A"), {0, 0, 1280, 720}, {0, 0, 1280, 720}, false},
               {QStringLiteral("B"), {1280, 0, 1280, 720}, {1280, 0, 1280, 720}, true}};
    tellThatScreensChanged();
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(1280 - 340 - 18, 18));
    EXPECT_EQ(buttonTexts(), allButtons);
}

TEST_F(HeadsUp, when_its_screen_goes_it_appears_on_the_main_one) {
    auto &screens = scenario.platform.fakeScreens.screens;
    show();
    screens = {{QStringLiteral("B"), {0, 0, 1280, 720}, {0, 0, 1280, 720}, true}};
    tellThatScreensChanged();
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(1280 - 340 - 18, 18));
    EXPECT_EQ(scenario.platform.layers.assignments.back().screen.name, QStringLiteral("B"));
}

TEST_F(HeadsUp, it_outlasts_a_moment_without_screens) {
    auto &screens = scenario.platform.fakeScreens.screens;
    show();
    const QWidget *before = panel();
    const auto all = std::exchange(screens, {});
    tellThatScreensChanged();
    screens = all;
    tellThatScreensChanged();
    EXPECT_EQ(panel(), before);
}

TEST_F(HeadsUp, a_change_that_does_not_concern_it_leaves_it_alone_and_one_after_it_shows_nothing) {
    auto &screens = scenario.platform.fakeScreens.screens;
    show();
    const QWidget *before = panel();
    screens.push_back({QStringLiteral("B"), {1920, 0, 1280, 720}, {1920, 0, 1280, 720}, false});
    tellThatScreensChanged();
    EXPECT_EQ(panel(), before);
    headsUp.hide();
    screens.erase(screens.begin());
    tellThatScreensChanged();
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(HeadsUp, without_a_main_screen_it_is_shown_at_the_origin) {
    scenario.platform.fakeScreens.screens.clear();
    show();
    EXPECT_EQ(slabOf(panel()), QRect(0, 0, 340, 132));
}

TEST_F(HeadsUp, the_cross_that_closes_it_is_even_and_in_the_middle_at_one_pixel_a_point) {
    show();
    const QImage picture = button(QStringLiteral("Dismiss this notice"))->grab().toImage();
    ASSERT_EQ(picture.size(), QSize(18, 18));
    const auto shade = [&](int x, int y) { return qGray(picture.pixel(x, y)); };
    constexpr int rounding = 8;
    for (int y = 0; y < 18; ++y) {
        for (int x = 0; x < 18; ++x) {
            EXPECT_NEAR(shade(x, y), shade(17 - x, y), rounding) << x << ' ' << y;
            EXPECT_NEAR(shade(x, y), shade(x, 17 - y), rounding) << x << ' ' << y;
        }
    }
    EXPECT_LT(shade(8, 8), shade(8, 4) - 60) << "it is hardly to be seen";
}

TEST_F(HeadsUp, lies_in_the_panel_layer_and_never_takes_the_keyboard) {
    show();
    const auto &assignment = scenario.platform.layers.assignments.back();
    EXPECT_EQ(assignment.window, panel()->windowHandle());
    EXPECT_EQ(assignment.layer, WindowLayer::panel);
    EXPECT_TRUE(panel()->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(panel()->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_FALSE(panel()->windowFlags() & Qt::WindowTransparentForInput);
    for (const auto *child : panel()->findChildren<QWidget *>())
        EXPECT_EQ(child->focusPolicy(), Qt::NoFocus);
}

TEST_F(HeadsUp, with_postponing_and_skipping_permitted_it_is_132_points_tall_and_offers_everything) {
    show();
    EXPECT_EQ(slabOf(panel()).height(), 132);
    EXPECT_EQ(buttonTexts(), allButtons);
}

TEST_F(HeadsUp, in_strict_mode_it_is_96_points_tall_with_start_and_close_only) {
    for (const bool skip : {false, true}) {
        for (const bool postpone : {false, true}) {
            scenario.settings.strictMode = true;
            scenario.settings.allowSkip = skip;
            scenario.settings.allowPostpone = postpone;
            show();
            EXPECT_EQ(slabOf(panel()).height(), 96);
            EXPECT_EQ(buttonTexts(), QStringList{QStringLiteral("Start now")});
            EXPECT_TRUE(button(QStringLiteral("Dismiss this notice"))->isVisible());
        }
    }
}

TEST_F(HeadsUp, without_postponing_but_with_skipping_it_is_96_points_tall_and_still_shows_skip) {
    scenario.settings.allowPostpone = false;
    show();
    EXPECT_EQ(slabOf(panel()).height(), 96);
    EXPECT_EQ(buttonTexts(), QStringList({QStringLiteral("Start now"), QStringLiteral("Skip")}));
}

TEST_F(HeadsUp, everything_on_it_lies_within_its_padding) {
    scenario.settings.allowPostpone = false;
    show();
    const QRect inside = QRect(QPoint(), slabOf(panel()).size()).adjusted(14, 14, -14, -14);
    for (const auto *child : childrenOf<Button>(panel())) {
        EXPECT_TRUE(!child->isVisible() || inside.contains(child->geometry())) << qPrintable(child->text());
    }
}

TEST_F(HeadsUp, its_buttons_follow_the_settings_while_it_is_shown) {
    show();
    scenario.settings.allowSkip = false;
    scenario.platform.loop.advance(0);
    EXPECT_EQ(buttonTexts(), allButtons.mid(0, 3));

    scenario.settings.strictMode = true;
    scenario.platform.loop.advance(0);
    EXPECT_EQ(buttonTexts(), allButtons.mid(0, 1));

    scenario.settings.allowSkip = true;
    scenario.settings.strictMode = false;
    scenario.platform.loop.advance(0);
    EXPECT_EQ(buttonTexts(), allButtons);
}

TEST_F(HeadsUp, turns_dark_as_a_whole_with_the_desktop) {
    show();
    const QImage light = picture();
    scenario.platform.colours.change({true, false, {}});
    const QImage turned = picture();
    EXPECT_NE(turned, light);
    show();
    EXPECT_EQ(turned, picture()) << "it looks like one that was dark from the start";
}

TEST_F(HeadsUp, its_time_runs_with_the_controller) {
    runUpToNotice();
    const QImage at30 = picture();
    scenario.advance(1);
    const QImage at29 = picture();
    EXPECT_NE(at30, at29);
    EXPECT_EQ(at29, picture()) << "and only then";
}

TEST_F(HeadsUp, only_the_time_changes_from_second_to_second) {
    runUpToNotice();
    scenario.advance(1);
    const QImage before = picture();
    scenario.advance(1);
    const QImage after = picture();
    QRect changed;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            if (before.pixel(x, y) != after.pixel(x, y))
                changed |= QRect(x, y, 1, 1);
        }
    }
    EXPECT_LT(changed.width(), 20) << "one digit";
    EXPECT_GT(changed.left(), 240);
}

TEST_F(HeadsUp, shows_the_time_0_00_when_no_break_is_scheduled) {
    scenario.settings.microEnabled = false;
    scenario.settings.longEnabled = false;
    show();
    const QImage without = picture();
    scenario.settings.microEnabled = true;
    scenario.controller.microElapsed = 1200;
    scenario.platform.loop.advance(0);
    EXPECT_EQ(picture(), without) << "a break that is due reads 0:00 as well";
}

TEST_F(HeadsUp, each_kind_has_its_own_symbol) {
    std::vector<QImage> symbols;
    for (const BreakKind kind : {BreakKind::micro, BreakKind::long_, BreakKind::planned}) {
        show(kind);
        symbols.push_back(picture().copy(14, 14, 22, 32));
    }
    EXPECT_NE(symbols[0], symbols[1]);
    EXPECT_NE(symbols[1], symbols[2]);
    EXPECT_NE(symbols[0], symbols[2]);
}

TEST_F(HeadsUp, a_title_of_any_length_leaves_the_time_alone) {
    show(BreakKind::planned, QStringLiteral("Tea"));
    const QRect right(240, 0, 100, 132);
    const QImage withShort = picture().copy(right);
    show(BreakKind::planned, QStringLiteral("A very long lunch with everybody from upstairs and their dogs"));
    EXPECT_EQ(picture().copy(right), withShort);
    show(BreakKind::planned, QStringLiteral("Two\nlines"));
    EXPECT_EQ(picture().copy(right), withShort);
    show(BreakKind::planned, QString());
    EXPECT_EQ(picture().copy(right), withShort);
}

TEST_F(HeadsUp, start_now_starts_a_break_of_the_kind_of_the_notice) {
    runUpToNotice();
    clickOn(QStringLiteral("Start now"));
    EXPECT_EQ(scenario.controller.phase, Phase::breaking);
    EXPECT_EQ(scenario.controller.currentBreak.get(), BreakKind::micro);
    EXPECT_EQ(scenario.controller.breakTotal, 20);
}

TEST_F(HeadsUp, start_now_on_a_planned_notice_starts_a_planned_break_of_the_default_length) {
    show(BreakKind::planned, QStringLiteral("Lunch"));
    clickOn(QStringLiteral("Start now"));
    EXPECT_EQ(scenario.controller.currentBreak.get(), BreakKind::planned);
    EXPECT_EQ(scenario.controller.breakTitle.get(), QStringLiteral("Planned break"));
    EXPECT_EQ(scenario.controller.breakTotal, 300);
}

TEST_F(HeadsUp, plus_one_minute_postpones_by_60_seconds) {
    runUpToNotice();
    clickOn(QStringLiteral("+1 min"));
    EXPECT_EQ(scenario.controller.next()->remaining, 90);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(HeadsUp, plus_five_minutes_postpones_by_300_seconds) {
    runUpToNotice();
    clickOn(QStringLiteral("+5 min"));
    EXPECT_EQ(scenario.controller.next()->remaining, 330);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(HeadsUp, skip_passes_over_the_coming_break) {
    runUpToNotice();
    clickOn(QStringLiteral("Skip"));
    EXPECT_EQ(scenario.controller.phase, Phase::counting);
    EXPECT_EQ(scenario.controller.microElapsed, 0);
    EXPECT_EQ(scenario.stats.today().skipped, 1);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(HeadsUp, its_close_button_hides_it_and_the_break_still_comes) {
    runUpToNotice();
    clickOn(QStringLiteral("Dismiss this notice"));
    EXPECT_EQ(panel(), nullptr);
    EXPECT_EQ(scenario.controller.phase, Phase::headsUp);
    scenario.advance(30);
    EXPECT_EQ(scenario.controller.phase, Phase::breaking);
}

TEST_F(HeadsUp, fades_in_within_a_quarter_of_a_second) {
    show();
    EXPECT_EQ(panel()->windowOpacity(), 0);
    scenario.platform.loop.advance(0.125);
    EXPECT_GT(panel()->windowOpacity(), 0.2);
    EXPECT_LT(panel()->windowOpacity(), 0.8);
    scenario.platform.loop.advance(0.125);
    EXPECT_EQ(panel()->windowOpacity(), 1);
}

TEST_F(HeadsUp, fades_out_within_a_fifth_of_a_second_and_is_gone) {
    show();
    scenario.platform.loop.advance(1);
    headsUp.hide();
    EXPECT_EQ(panel(), nullptr);
    ASSERT_EQ(visibleWindows(title).size(), 1U);
    scenario.platform.loop.advance(0.1);
    EXPECT_LT(visibleWindows(title).front()->windowOpacity(), 0.8);
    scenario.platform.loop.advance(0.1);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(HeadsUp, appears_and_goes_at_once_where_the_user_wishes_for_less_motion) {
    scenario.platform.colours.current.reducedMotion = true;
    show();
    EXPECT_EQ(panel()->windowOpacity(), 1);
    headsUp.hide();
    scenario.platform.loop.advance(0);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(HeadsUp, a_repeated_show_replaces_it) {
    show();
    scenario.platform.loop.advance(1);
    show(BreakKind::long_, QStringLiteral("Long break"));
    EXPECT_EQ(shownWindows(title).size(), 1U);
    EXPECT_EQ(visibleWindows(title).size(), 2U) << "the old one fades out";
    scenario.platform.loop.advance(1);
    EXPECT_EQ(visibleWindows(title).size(), 1U);
}

TEST_F(HeadsUp, hiding_what_is_not_shown_does_nothing) {
    headsUp.hide();
    headsUp.hide();
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(HeadsUp, a_click_that_comes_while_it_fades_out_does_nothing) {
    runUpToNotice();
    auto *skip = button(QStringLiteral("Skip"));
    headsUp.hide();
    click(*skip);
    EXPECT_EQ(scenario.stats.today().skipped, 0);
}

TEST_F(HeadsUp, a_press_that_is_let_go_while_it_fades_out_does_nothing) {
    runUpToNotice();
    auto *skip = button(QStringLiteral("Skip"));
    sendMouse(*skip, QEvent::MouseButtonPress);
    scenario.advance(30); // the break starts under the finger
    headsUp.hide();
    sendMouse(*skip, QEvent::MouseButtonRelease);
    EXPECT_EQ(scenario.controller.phase, Phase::breaking);
}

TEST_F(HeadsUp, can_go_while_it_fades_and_while_changes_wait) {
    {
        HeadsUpController shortLived(scenario.platform, scenario.platform.notices, scenario.controller,
                                     scenario.settings);
        shortLived.show(BreakKind::micro, QStringLiteral("Micro break"));
        shortLived.hide();
        shortLived.show(BreakKind::micro, QStringLiteral("Micro break"));
        scenario.settings.allowSkip = false;
    }
    scenario.advance(2);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(HeadsUp, the_close_button_explains_itself_once_the_pointer_rests_on_it) {
    show();
    auto *close = button(QStringLiteral("Dismiss this notice"));
    const auto hints = [] { return shownWindows("Pavonel Hint").size(); };
    QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(close, &enter);
    scenario.platform.loop.advance(0.5);
    EXPECT_EQ(hints(), 0U);
    scenario.platform.loop.advance(0.5);
    EXPECT_EQ(hints(), 1U);
    EXPECT_TRUE(shownWindow("Pavonel Hint")->windowFlags() & Qt::WindowTransparentForInput);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(close, &leave);
    EXPECT_EQ(hints(), 0U);
}

TEST_F(HeadsUp, every_button_says_its_name_to_a_screen_reader) {
    show();
    for (const auto *candidate : childrenOf<Button>(panel()))
        EXPECT_FALSE(candidate->text().isEmpty() && candidate->accessibleName().isEmpty());
}

TEST_F(HeadsUp, is_dark_on_a_dark_desktop) {
    show();
    EXPECT_GT(picture().pixelColor(300, 110).lightnessF(), 0.8f);
    scenario.platform.colours.current.dark = true;
    show();
    EXPECT_LT(picture().pixelColor(300, 110).lightnessF(), 0.3f);
}

} // namespace pavonel::test
