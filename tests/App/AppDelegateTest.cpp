#include "AppDelegate.h"

#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Updater.h"
#include "Platform/Qt/QtMainLoop.h"
#include "support/FakePlatform.h"
#include "support/Styled.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <algorithm>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString notice = QStringLiteral("Pavonel Heads-up");
const QString countdown = QStringLiteral("Pavonel Countdown");
const QString toast = QStringLiteral("Pavonel Toast");
const QString settingsTitle = QStringLiteral("Pavonel");
const QString overlay = QStringLiteral("Pavonel Break");

struct AppDelegateTest : testing::Test {
    FakePlatform platform;
    Styled styled{platform}; // as main() does
    Settings settings{platform.fakeDefaults, platform.loop};
    Stats stats{platform.fakeDefaults, platform.loop};
    HotKeyManager hotKeys{platform.keys, platform.loop};
    Phone phone{platform.web, platform.loop, platform.fakeDefaults,
                QUrl(QStringLiteral("https://pair.example"))};
    Updater updater{platform, QUrl(QStringLiteral("https://updates.example/feed"))};
    AppDelegate delegate{platform, settings, stats, hotKeys, phone, updater};

    static qsizetype shown(const QString &title) {
        const auto windows = QApplication::topLevelWidgets();
        return std::count_if(windows.begin(), windows.end(), [&](const QWidget *window) {
            return window->isVisible() && window->windowTitle() == title;
        });
    }

    /// Ticks, and whatever fades out in the meantime.
    void pass(Seconds seconds) { platform.loop.advance(seconds); }

    void wakeUp() {
        platform.powerEvents.wake();
        pass(1);
    }
};

} // namespace

TEST_F(AppDelegateTest, a_heads_up_shows_the_notice_and_the_floating_countdown) {
    delegate.setUp();
    pass(1169);
    EXPECT_EQ(shown(notice), 0);
    pass(2);
    EXPECT_EQ(shown(notice), 1);
    EXPECT_EQ(shown(countdown), 1);
}

TEST_F(AppDelegateTest, the_floating_countdown_can_be_switched_off) {
    settings.showFloatingCountdown = false;
    delegate.setUp();
    pass(1171);
    EXPECT_EQ(shown(notice), 1);
    EXPECT_EQ(shown(countdown), 0);
}

TEST_F(AppDelegateTest, a_break_takes_the_place_of_the_notice_on_every_screen) {
    platform.fakeScreens.screens.push_back(
        {QStringLiteral("B"), {1920, 0, 1280, 720}, {1920, 0, 1280, 720}, false});
    delegate.setUp();
    pass(1202);
    EXPECT_EQ(shown(notice), 0);
    EXPECT_EQ(shown(countdown), 0);
    EXPECT_EQ(shown(overlay), 2);
    pass(22);
    EXPECT_EQ(shown(overlay), 0);
    EXPECT_EQ(stats.today().micro, 1);
}

TEST_F(AppDelegateTest, waking_during_a_heads_up_withdraws_the_notice_and_the_floating_countdown) {
    delegate.setUp();
    pass(1175);
    ASSERT_EQ(shown(notice), 1);
    wakeUp();
    EXPECT_EQ(shown(notice), 0);
    EXPECT_EQ(shown(countdown), 0);
}

TEST_F(AppDelegateTest, after_waking_both_counters_start_from_0) {
    settings.longInterval = 1500;
    delegate.setUp();
    pass(1100);
    wakeUp();
    pass(1166);
    EXPECT_EQ(shown(notice), 0);
    pass(5);
    EXPECT_EQ(shown(notice), 1);
    pass(31);
    ASSERT_EQ(shown(overlay), 1);
    pass(22);
    EXPECT_EQ(stats.today().micro, 1);
    EXPECT_EQ(shown(overlay), 0);
    pass(300);
    EXPECT_EQ(shown(overlay), 1) << "no long break 1,500 s after waking";
}

TEST_F(AppDelegateTest, waking_leaves_a_running_break_alone) {
    delegate.setUp();
    pass(1205);
    ASSERT_EQ(shown(overlay), 1);
    wakeUp();
    EXPECT_EQ(shown(overlay), 1);
    pass(20);
    EXPECT_EQ(stats.today().micro, 1);
}

TEST_F(AppDelegateTest, a_delegate_that_is_gone_is_not_told_of_waking) {
    {
        AppDelegate other{platform, settings, stats, hotKeys, phone, updater};
        other.setUp();
        EXPECT_TRUE(platform.powerEvents.wake);
    }
    EXPECT_FALSE(platform.powerEvents.wake);
}

TEST_F(AppDelegateTest, a_wellness_reminder_is_shown_while_counting) {
    settings.blinkEnabled = true;
    settings.blinkInterval = 100;
    delegate.setUp();
    pass(101);
    EXPECT_EQ(shown(toast), 1);
}

TEST_F(AppDelegateTest, a_wellness_reminder_that_falls_due_while_a_break_runs_is_not_shown_and_not_queued) {
    settings.blinkEnabled = true;
    settings.blinkInterval = 100;
    settings.microDuration = 60;
    delegate.setUp();
    pass(90);
    delegate.act(OutsideAction::takeMicroBreak);
    for (int second = 0; second < 62; ++second) {
        pass(1);
        EXPECT_EQ(shown(toast), 0) << second;
    }
    EXPECT_EQ(shown(overlay), 0);
}

TEST_F(AppDelegateTest, at_the_start_the_login_item_is_made_when_it_is_wanted_and_missing) {
    delegate.setUp();
    EXPECT_EQ(platform.login.requests, std::vector<bool>{true});
}

TEST_F(AppDelegateTest, a_login_item_that_is_there_is_left_alone) {
    platform.login.enabled = true;
    delegate.setUp();
    EXPECT_TRUE(platform.login.requests.empty());
}

TEST_F(AppDelegateTest, starting_never_removes_the_login_item) {
    settings.launchAtLogin = false;
    platform.login.enabled = true;
    delegate.setUp();
    EXPECT_TRUE(platform.login.requests.empty());
}

TEST_F(AppDelegateTest, a_login_item_that_cannot_be_made_does_not_hinder_the_start) {
    platform.login.failure = QStringLiteral("The disk is full.");
    delegate.setUp();
    pass(1171);
    EXPECT_EQ(shown(notice), 1);
}

TEST_F(AppDelegateTest, at_the_start_the_updater_looks_for_a_new_version_when_one_is_due) {
    delegate.setUp();
    ASSERT_EQ(platform.web.exchanges.size(), 1U);
    EXPECT_EQ(platform.web.exchanges[0].request.url, QUrl(QStringLiteral("https://updates.example/feed")));
}

TEST_F(AppDelegateTest, at_the_start_nothing_is_asked_on_the_day_of_the_last_check) {
    updater.lastCheck = platform.loop.now() + -1000;
    delegate.setUp();
    pass(1000);
    EXPECT_TRUE(platform.web.exchanges.empty());
}

TEST_F(AppDelegateTest, the_three_shortcuts_are_registered_in_their_order) {
    delegate.setUp();
    using Key = FakeHotKeys::Key;
    EXPECT_EQ(platform.keys.registered, (std::vector<Key>{{11, 0x1900, 1}, {1, 0x1900, 2}, {35, 0x1900, 3}}));
}

TEST_F(AppDelegateTest, without_shortcuts_no_handler_is_installed_until_the_first_break) {
    settings.hotKeysEnabled = false;
    delegate.setUp();
    pass(1199);
    EXPECT_EQ(platform.keys.handlersSet, 0);
    pass(2);
    EXPECT_EQ(platform.keys.handlersSet, 1);
}

TEST_F(AppDelegateTest, the_shortcuts_take_a_break_skip_and_pause) {
    delegate.setUp();
    platform.keys.handler(1);
    pass(1);
    EXPECT_EQ(shown(overlay), 1);
    platform.keys.handler(2);
    pass(1);
    EXPECT_EQ(shown(overlay), 0);
    EXPECT_EQ(stats.today().skipped, 1);
    platform.keys.handler(3);
    pass(2000);
    EXPECT_EQ(shown(notice), 0);
}

TEST_F(AppDelegateTest, actions_from_outside_do_what_the_shortcuts_and_the_menu_do) {
    delegate.setUp();
    delegate.act(OutsideAction::takeLongBreak);
    pass(1);
    EXPECT_EQ(shown(overlay), 1);
    delegate.act(OutsideAction::skip);
    pass(1);
    EXPECT_EQ(shown(overlay), 0);
    delegate.act(OutsideAction::togglePause);
    pass(2000);
    EXPECT_EQ(shown(notice), 0);
    delegate.act(OutsideAction::togglePause);
    pass(1171);
    EXPECT_EQ(shown(notice), 1);
}

TEST_F(AppDelegateTest, quitting_from_the_menu_leaves_during_a_break_too) {
    delegate.setUp();
    delegate.act(OutsideAction::takeLongBreak);
    pass(1);
    ASSERT_EQ(shown(overlay), 1);
    const Menu menu = platform.menuBar.makeMenu();
    const auto quit = std::find_if(menu.begin(), menu.end(),
                                   [](const MenuItem &item) { return item.title == u"Quit Pavonel"; });
    ASSERT_NE(quit, menu.end());
    quit->action();
    ASSERT_EQ(platform.loop.quits, std::vector<int>{0});
    QtMainLoop realLoop; // which does so while a window refuses to close
    QTimer::singleShot(0, [&] { realLoop.quit(platform.loop.quits.front()); });
    constexpr int stayed = 1;
    QTimer::singleShot(5000, [] { QCoreApplication::exit(stayed); });
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(AppDelegateTest, the_first_start_shows_the_settings) {
    delegate.setUp();
    EXPECT_EQ(shown(settingsTitle), 1);
    EXPECT_EQ(platform.fakeDefaults.values[QStringLiteral("didOnboard")], StoredValue(true));
}

TEST_F(AppDelegateTest, the_second_start_does_not_show_the_settings) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    pass(1);
    EXPECT_EQ(shown(settingsTitle), 0);
}

TEST_F(AppDelegateTest, a_first_start_is_told_by_nothing_but_a_true_mark) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = QStringLiteral("yes");
    delegate.setUp();
    EXPECT_EQ(shown(settingsTitle), 1);
}

TEST_F(AppDelegateTest, opening_the_program_again_shows_the_settings) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    delegate.reopen();
    EXPECT_EQ(shown(settingsTitle), 1);
}

TEST_F(AppDelegateTest, opened_again_with_another_version_in_its_place_it_gives_way) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    delegate.reopen();
    EXPECT_EQ(shown(settingsTitle), 0);
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
}

TEST_F(AppDelegateTest, it_gives_way_to_what_a_package_manager_puts_in_its_place) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    platform.copy.tellSuccessor();
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
}

TEST_F(AppDelegateTest, another_version_in_its_place_waits_for_the_end_of_a_break) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    delegate.act(OutsideAction::takeMicroBreak);
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    delegate.reopen();
    pass(18);
    EXPECT_EQ(shown(overlay), 1);
    EXPECT_TRUE(platform.loop.quits.empty());
    EXPECT_EQ(shown(settingsTitle), 0) << "those of the old version";
    pass(3);
    EXPECT_EQ(stats.today().micro, 1);
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
}

TEST_F(AppDelegateTest, a_package_manager_does_not_end_a_break) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    delegate.act(OutsideAction::takeMicroBreak);
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    platform.copy.tellSuccessor();
    pass(18);
    EXPECT_TRUE(platform.loop.quits.empty());
    pass(3);
    EXPECT_EQ(platform.loop.quits, std::vector<int>{0});
}

TEST_F(AppDelegateTest, after_a_break_it_stays_unless_it_was_opened_again) {
    delegate.setUp();
    platform.copy.versionInPlace = QStringLiteral("1.3.0");
    delegate.act(OutsideAction::takeMicroBreak);
    pass(25);
    EXPECT_TRUE(platform.loop.quits.empty());
}

TEST_F(AppDelegateTest, the_menu_opens_the_settings) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    const Menu menu = platform.menuBar.makeMenu();
    const auto item = std::find_if(menu.begin(), menu.end(),
                                   [](const MenuItem &entry) { return entry.title == u"Settings…"; });
    ASSERT_NE(item, menu.end());
    item->action();
    EXPECT_EQ(shown(settingsTitle), 1);
}

TEST_F(AppDelegateTest, nothing_of_the_settings_window_exists_before_it_is_first_shown) {
    platform.fakeDefaults.values[QStringLiteral("didOnboard")] = true;
    delegate.setUp();
    pass(1);
    for (const QWidget *window : QApplication::topLevelWidgets())
        EXPECT_NE(window->windowTitle(), settingsTitle);
}

} // namespace pavonel::test
