#include "UI/MenuBar.h"

#include "support/Scenario.h"

#include <algorithm>
#include <iterator>

namespace pavonel::test {

namespace {

class MenuBar : public ::testing::Test {
protected:
    FakePlatform platform;
    Settings settings{*platform.defaults, *platform.mainLoop};
    Stats stats{*platform.defaults, *platform.mainLoop};
    BreakController controller{servicesOf(platform), settings, stats};
    int settingsOpened = 0;
    MenuBarController menuBar{platform.menuBar, platform.loop, controller,
                              settings,         stats,         [this] { ++settingsOpened; }};

    void refresh() { platform.loop.advance(1); }

    Menu menu() { return platform.menuBar.makeMenu(); }

    const MenuItem *find(const Menu &items, const QString &title) {
        const auto found =
            std::find_if(items.begin(), items.end(), [&](const auto &i) { return i.title == title; });
        return found == items.end() ? nullptr : &*found;
    }

    void choose(const Menu &items, const char *title) {
        const MenuItem *item = find(items, QString::fromUtf8(title));
        ASSERT_TRUE(item) << "no menu item: " << title;
        ASSERT_TRUE(item->action) << title;
        item->action();
    }

    /// One text a line, as a person reads the menu.
    static QStringList lines(const Menu &items) {
        QStringList texts;
        for (const MenuItem &item : items) {
            QString text = item.kind == MenuItem::Kind::separator ? QStringLiteral("-") : item.title;
            if (item.kind == MenuItem::Kind::label)
                text = QStringLiteral("(%1)").arg(text);
            if (!item.keyEquivalent.isEmpty())
                text += QStringLiteral(" [%1]").arg(item.keyEquivalent);
            texts.append(text);
        }
        return texts;
    }

    void breakWith(Seconds remaining) {
        controller.startBreak(BreakKind::micro, BreakController::Initiator::user, remaining);
    }
};

QString text(const char *utf8) {
    return QString::fromUtf8(utf8);
}

} // namespace

TEST_F(MenuBar, icon_and_title_tell_the_state_in_this_order) {
    const struct {
        const char *icon;
        const char *title;
        std::function<void()> state;
    } table[] = {
        {"menubar", "20m", [&] { controller.microElapsed = 1; }},
        {"menubar", "45s", [&] { controller.microElapsed = 1200 - 45.7; }},
        {"arrow.up.left.and.arrow.down.right", "", [&] { controller.pauseReason = PauseReason::fullscreen; }},
        {"speaker.wave.2", "", [&] { controller.pauseReason = PauseReason::audio; }},
        {"mic", "", [&] { controller.pauseReason = PauseReason::microphone; }},
        {"record.circle", "", [&] { controller.pauseReason = PauseReason::screenSharing; }},
        {"brain.head.profile", "", [&] { controller.pauseReason = PauseReason::deepFocus; }},
        {"pause.circle", "", [&] { controller.phase = Phase::paused; }},
        {"cup.and.saucer", "0:20", [&] { controller.phase = Phase::counting, breakWith(20); }},
    };
    for (const auto &row : table) {
        row.state();
        refresh();
        EXPECT_EQ(platform.menuBar.icon.toStdString(), row.icon);
        EXPECT_EQ(platform.menuBar.title.toStdString(), row.title);
        EXPECT_EQ(platform.menuBar.images.size(), 2U) << row.icon;
    }
}

TEST_F(MenuBar, without_a_coming_break_the_mark_stands_alone) {
    settings.microEnabled = false;
    settings.longEnabled = false;
    refresh();
    EXPECT_EQ(platform.menuBar.icon, QStringLiteral("menubar"));
    EXPECT_EQ(platform.menuBar.title, QString());
    EXPECT_EQ(lines(menu()).value(0), QStringLiteral("(No break scheduled)"));
}

TEST_F(MenuBar, is_right_from_the_start) {
    EXPECT_EQ(platform.menuBar.icon, QStringLiteral("menubar"));
    EXPECT_EQ(platform.menuBar.title, QStringLiteral("21m"));
}

TEST(ShortRemainingTime, never_shows_less_than_is_left) {
    const std::pair<Seconds, const char *> table[] = {
        {0, "0s"},   {45.7, "45s"}, {59.9, "59s"},           {60, "2m"}, {61, "2m"}, {119, "2m"},
        {120, "3m"}, {3600, "61m"}, {1e300, "16666666667m"},
    };
    for (const auto &[remaining, shown] : table)
        EXPECT_EQ(shortRemainingTime(remaining).toStdString(), shown) << remaining;
}

TEST_F(MenuBar, nothing_is_sent_in_a_second_in_which_nothing_changed) {
    refresh();
    const int before = platform.menuBar.changes;
    refresh();
    refresh();
    EXPECT_EQ(platform.menuBar.changes, before);
}

TEST_F(MenuBar, menu_holds_the_commands_in_order) {
    EXPECT_EQ(
        lines(menu()),
        QStringList({text("(Micro break: 20:00)"), text("-"), text("Take a micro break [b]"),
                     text("Take a long break [l]"), text("Skip next break [s]"), text("-"), text("Pause"),
                     text("Reset timers"), text("-"), text("(Today: 0 breaks · 0 skipped)"), text("-"),
                     text("Settings… [,]"), text("Quit Pavonel [q]")}));
    EXPECT_EQ(lines(find(menu(), text("Pause"))->submenu),
              QStringList({text("15 minutes"), text("30 minutes"), text("1 hour"), text("Until tomorrow"),
                           text("-"), text("Indefinitely")}));
}

TEST_F(MenuBar, break_commands_are_offered_during_a_break_too) {
    breakWith(20);
    EXPECT_TRUE(find(menu(), text("Take a micro break")));
    EXPECT_TRUE(find(menu(), text("Take a long break")));
    EXPECT_TRUE(find(menu(), text("Pause")));
}

TEST_F(MenuBar, skipping_is_offered_only_when_it_is_permitted) {
    settings.strictMode = true;
    EXPECT_FALSE(find(menu(), text("Skip next break"))) << "strict mode, even with skipping allowed";
    settings.strictMode = false;
    settings.allowSkip = false;
    EXPECT_FALSE(find(menu(), text("Skip next break")));
}

TEST_F(MenuBar, while_paused_resume_stands_in_the_place_of_pause) {
    controller.microElapsed = 100;
    controller.pause(900);
    EXPECT_FALSE(find(menu(), text("Pause")));
    choose(menu(), "Resume");
    EXPECT_EQ(controller.phase, Phase::counting);
    EXPECT_FALSE(controller.pauseUntil.get());
    EXPECT_EQ(controller.microElapsed, 100);
    EXPECT_TRUE(find(menu(), text("Pause")));
}

TEST_F(MenuBar, resume_in_a_menu_opened_before_a_break_leaves_the_break_alone) {
    controller.pause();
    const Menu openedEarlier = menu();
    breakWith(20);
    choose(openedEarlier, "Resume");
    EXPECT_EQ(controller.phase, Phase::breaking);
    EXPECT_EQ(controller.currentBreak.get(), BreakKind::micro);
}

TEST_F(MenuBar, resume_in_a_menu_opened_before_the_pause_ended_leaves_the_notice_alone) {
    controller.pause();
    const Menu openedEarlier = menu();
    controller.resume();
    controller.microElapsed = 1190;
    controller.start();
    refresh();
    ASSERT_EQ(controller.phase, Phase::headsUp);
    choose(openedEarlier, "Resume");
    EXPECT_EQ(controller.phase, Phase::headsUp);
}

TEST_F(MenuBar, commands_act_on_the_controller) {
    choose(menu(), "Take a long break");
    EXPECT_EQ(controller.currentBreak.get(), BreakKind::long_);
    controller.endBreak(BreakController::Ending::completed);
    choose(menu(), "Take a micro break");
    EXPECT_EQ(controller.currentBreak.get(), BreakKind::micro);
    choose(menu(), "Skip next break");
    EXPECT_EQ(controller.phase, Phase::counting);
    choose(menu(), "Settings…");
    EXPECT_EQ(settingsOpened, 1);
}

TEST_F(MenuBar, pauses_are_as_long_as_they_say) {
    const std::pair<const char *, std::optional<Seconds>> table[] = {
        {"15 minutes", 900}, {"30 minutes", 1800}, {"1 hour", 3600}, {"Indefinitely", std::nullopt}};
    for (const auto &[title, seconds] : table) {
        controller.phase = Phase::counting;
        const Menu items = menu();
        choose(find(items, text("Pause"))->submenu, title);
        EXPECT_EQ(controller.phase, Phase::paused);
        const auto until = seconds ? std::optional(platform.loop.now() + *seconds) : std::nullopt;
        EXPECT_EQ(controller.pauseUntil.get(), until) << title;
    }
}

TEST_F(MenuBar, until_tomorrow_just_before_midnight_is_short) {
    platform.loop.setClock(text("2026-03-02T23:59:30"));
    const Menu items = menu();
    choose(find(items, text("Pause"))->submenu, "Until tomorrow");
    EXPECT_EQ(controller.pauseUntil.get(), platform.loop.at(text("2026-03-03T00:00")));
}

TEST_F(MenuBar, until_tomorrow_ends_at_the_next_midnight_however_long_the_day_is) {
    platform.loop.setZone("Europe/Berlin");
    const std::pair<const char *, const char *> table[] = {
        {"2026-03-28T23:30", "2026-03-29T00:00"}, // before a day of 23 hours
        {"2026-03-29T00:00", "2026-03-30T00:00"}, // in it
        {"2026-10-25T00:30", "2026-10-26T00:00"}, // in the first hour of a day of 25 hours
        {"2026-10-25T23:59", "2026-10-26T00:00"}, // in its last
    };
    for (const auto &[now, end] : table) {
        platform.loop.setClock(text(now));
        controller.phase = Phase::counting;
        const Menu items = menu();
        choose(find(items, text("Pause"))->submenu, "Until tomorrow");
        EXPECT_EQ(controller.pauseUntil.get(), platform.loop.at(text(end))) << now;
    }
}

TEST_F(MenuBar, reset_zeroes_both_counters_and_withdraws_the_heads_up) {
    int dismissed = 0;
    controller.onHeadsUpDismiss = [&] { ++dismissed; };
    controller.microElapsed = 1190;
    controller.longElapsed = 1190;
    controller.start();
    refresh();
    ASSERT_EQ(controller.phase, Phase::headsUp);
    choose(menu(), "Reset timers");
    EXPECT_EQ(controller.microElapsed, 0);
    EXPECT_EQ(controller.longElapsed, 0);
    EXPECT_EQ(controller.phase, Phase::counting);
    EXPECT_EQ(dismissed, 1);
}

TEST_F(MenuBar, todays_line_counts_micro_and_long_breaks_only) {
    Day day;
    day.micro = 1;
    day.planned = 5;
    stats.setToday(day);
    EXPECT_TRUE(find(menu(), text("Today: 1 breaks · 0 skipped")));
    day.long_ = 2;
    day.skipped = 4;
    stats.setToday(day);
    EXPECT_TRUE(find(menu(), text("Today: 3 breaks · 4 skipped")));
}

namespace {

/// The commands of a menu and of its submenus, but for that which quits.
std::vector<MenuItem> commandsOf(const Menu &menu) {
    std::vector<MenuItem> commands;
    for (const MenuItem &item : menu) {
        if (item.kind == MenuItem::Kind::submenu)
            std::ranges::copy(commandsOf(item.submenu), std::back_inserter(commands));
        else if (item.action && item.title != text("Quit Pavonel"))
            commands.push_back(item);
    }
    return commands;
}

} // namespace

TEST(MenuBarLife, a_command_of_a_menu_opened_in_any_phase_leaves_every_later_phase_whole) {
    Scenario s;
    const MenuBarController menuBar(s.platform.menuBar, s.platform.loop, s.controller, s.settings, s.stats,
                                    [] {});
    for (const Phase opened : everyPhase) {
        s.enter(opened);
        for (const MenuItem &command : commandsOf(s.platform.menuBar.makeMenu())) {
            for (const Phase later : everyPhase) {
                s.enter(later);
                command.action();
                EXPECT_TRUE(s.isWhole())
                    << command.title.toStdString() << " of a menu opened in phase "
                    << static_cast<int>(opened) << ", chosen in phase " << static_cast<int>(later);
            }
        }
    }
}

TEST(MenuBarLife, a_menu_that_outlives_the_menu_bar_does_nothing) {
    FakePlatform platform;
    Settings settings(*platform.defaults, *platform.mainLoop);
    Stats stats(*platform.defaults, *platform.mainLoop);
    BreakController controller(servicesOf(platform), settings, stats);
    Menu menu;
    {
        MenuBarController menuBar(platform.menuBar, platform.loop, controller, settings, stats,
                                  [] { FAIL(); });
        menu = platform.menuBar.makeMenu();
    }
    for (const MenuItem &item : menu) {
        if (item.action && item.title != text("Quit Pavonel"))
            item.action();
    }
    EXPECT_EQ(controller.phase, Phase::counting);
    EXPECT_TRUE(platform.menuBar.makeMenu().empty());
}

TEST(MenuBarLife, the_title_is_on_time_though_refreshes_wait) {
    const auto titles = [](bool wait) {
        FakePlatform platform;
        Settings settings(*platform.defaults, *platform.mainLoop);
        Stats stats(*platform.defaults, *platform.mainLoop);
        BreakController controller(servicesOf(platform), settings, stats);
        controller.start();
        platform.loop.beatsWait = wait;
        const MenuBarController menuBar(platform.menuBar, platform.loop, controller, settings, stats, [] {});
        QStringList shown;
        for (int second = 0; second < 1210; ++second) {
            platform.loop.advance(1);
            shown.append(platform.menuBar.title);
        }
        return shown;
    };
    EXPECT_EQ(titles(true), titles(false));
}

} // namespace pavonel::test
