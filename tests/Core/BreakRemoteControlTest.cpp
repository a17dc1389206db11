#include "Core/BreakRemoteControl.h"

#include "support/FakeStatusPublisher.h"
#include "support/Scenario.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Facts = Status::Facts;
using Next = Facts::Next;

qint64 at(const Scenario &scenario, Seconds fromNow) {
    return std::llround((scenario.platform.loop.now() + fromNow).time_since_epoch().count());
}

struct RemoteControlTest : testing::Test {
    Scenario scenario;
    Settings &settings = scenario.settings;
    BreakController &controller = scenario.controller;
    FakeStatusPublisher publisher;
    BreakRemoteControl remote{publisher, controller, settings, scenario.stats, scenario.platform.loop};

    Facts facts() const { return remote.status().facts; }
    std::optional<Next> next() const { return facts().next; }
    int told() const { return publisher.told; }

    /// All that a refused wish must leave as it is.
    auto state() const {
        return std::tuple(facts(), controller.microElapsed.get(), controller.longElapsed.get(),
                          controller.pauseUntil.get(), scenario.events);
    }

    template <class Wish> void expectRefusal(Refusal::Kind kind, const Wish &wish) {
        const auto before = state();
        const auto refusal = wish();
        ASSERT_TRUE(refusal);
        EXPECT_EQ(refusal->kind, kind);
        EXPECT_TRUE(refusal->sentence.endsWith(u'.')) << refusal->sentence.toStdString();
        EXPECT_EQ(refusal->sentence.count(u'.'), 1) << refusal->sentence.toStdString();
        EXPECT_EQ(state(), before);
    }
};

} // namespace

TEST_F(RemoteControlTest, the_coming_break_is_told_with_its_time_of_day) {
    scenario.advance(200);
    EXPECT_EQ(facts().phase, QStringLiteral("counting"));
    EXPECT_EQ(facts().hold, QString());
    EXPECT_EQ(next(), (Next{QStringLiteral("micro"), QStringLiteral("Micro break"), at(scenario, 1000), {}}));
    EXPECT_EQ(remote.status().line, QStringLiteral("Micro break: 16:40"));
    EXPECT_EQ(remote.status().screenSeconds, 200);
}

TEST_F(RemoteControlTest, the_heads_up_is_a_phase_of_its_own) {
    scenario.advance(1175);
    EXPECT_EQ(facts().phase, QStringLiteral("headsUp"));
    EXPECT_EQ(next()->due, at(scenario, 25));
}

TEST_F(RemoteControlTest, a_running_break_is_told_with_its_end_and_nothing_comes_next_meanwhile) {
    scenario.advance(1205);
    EXPECT_EQ(facts().phase, QStringLiteral("breaking"));
    EXPECT_EQ(facts().running,
              (Facts::Running{QStringLiteral("micro"), QStringLiteral("Micro break"), at(scenario, 15)}));
    EXPECT_EQ(next(), std::nullopt);
}

TEST_F(RemoteControlTest, a_hold_is_told_with_its_reason_and_what_is_left_stands_still) {
    scenario.advance(200);
    const struct {
        PauseReason reason;
        const char *name;
    } table[] = {{PauseReason::fullscreen, "fullscreen"},
                 {PauseReason::audio, "audio"},
                 {PauseReason::microphone, "microphone"},
                 {PauseReason::screenSharing, "screenSharing"},
                 {PauseReason::deepFocus, "deepFocus"}};
    for (const auto &row : table) {
        controller.pauseReason = row.reason;
        EXPECT_EQ(facts().hold, QString::fromUtf8(row.name));
        EXPECT_EQ(next(), (Next{QStringLiteral("micro"), QStringLiteral("Micro break"), {}, 1000}));
    }
}

TEST_F(RemoteControlTest, being_away_is_a_hold) {
    settings.idleResetSeconds = 10;
    scenario.advance(200);
    scenario.platform.idle.seconds = 12;
    scenario.advance(1);
    EXPECT_EQ(facts().hold, QStringLiteral("away"));
    EXPECT_EQ(next(), (Next{QStringLiteral("micro"), QStringLiteral("Micro break"), {}, 1000}));
}

TEST_F(RemoteControlTest, being_away_is_told_before_what_held_until_then) {
    settings.idleResetSeconds = 10;
    scenario.platform.audio.input = true;
    scenario.advance(1);
    ASSERT_EQ(facts().hold, QStringLiteral("microphone"));
    scenario.platform.idle.seconds = 12;
    scenario.advance(1);
    EXPECT_EQ(facts().hold, QStringLiteral("away"));
    scenario.platform.idle.seconds = 0;
    scenario.advance(1);
    EXPECT_EQ(facts().hold, QStringLiteral("microphone"));
}

TEST_F(RemoteControlTest, a_pause_is_told_with_its_end_if_it_has_one) {
    scenario.advance(200);
    controller.pause(600);
    EXPECT_EQ(facts().phase, QStringLiteral("paused"));
    EXPECT_EQ(facts().pauseEnds, at(scenario, 600));
    EXPECT_EQ(next()->due, std::nullopt);
    EXPECT_EQ(next()->remaining, 1000);
    controller.pause();
    EXPECT_EQ(facts().pauseEnds, std::nullopt);
}

TEST_F(RemoteControlTest, what_held_the_timer_is_not_told_of_a_pause_or_a_break) {
    controller.pauseReason = PauseReason::audio;
    controller.pause();
    EXPECT_EQ(facts().hold, QString());
    controller.startBreak(BreakKind::long_, BreakController::Initiator::user);
    EXPECT_EQ(facts().hold, QString());
}

TEST_F(RemoteControlTest, a_planned_break_keeps_its_time_of_day_in_a_hold_until_that_has_passed) {
    scenario.onlyPlannedBreaks();
    scenario.plan(9, 10);
    scenario.platform.audio.input = true;
    scenario.advance(1);
    ASSERT_EQ(facts().hold, QStringLiteral("microphone"));
    EXPECT_EQ(next(), (Next{QStringLiteral("planned"), QStringLiteral("Lunch"), at(scenario, 599), {}}));
    scenario.advance(700);
    EXPECT_EQ(next(), (Next{QStringLiteral("planned"), QStringLiteral("Lunch"), {}, 0}));
}

TEST_F(RemoteControlTest, without_a_break_to_come_none_is_told) {
    scenario.onlyPlannedBreaks();
    EXPECT_EQ(next(), std::nullopt);
}

TEST_F(RemoteControlTest, the_figures_of_today_are_told) {
    scenario.stats.setToday({4, 3, 2, 1, 1234.5, 60});
    EXPECT_EQ(facts().today, (Facts::Counts{4, 3, 2, 1}));
    EXPECT_EQ(remote.status().screenSeconds, 1235);
    EXPECT_EQ(remote.status().breakSeconds, 60);
}

TEST_F(RemoteControlTest, settings_gone_wild_are_told_as_something_showable) {
    settings.microInterval = 1e300;
    settings.longEnabled = false;
    controller.startBreak(BreakKind::micro, BreakController::Initiator::user, -1e300);
    EXPECT_LT(facts().running->ends, 0);
    controller.pause(1e300);
    EXPECT_GT(facts().pauseEnds, at(scenario, 0));
    EXPECT_GT(next()->remaining, 1'000'000'000);
}

TEST_F(RemoteControlTest, nobody_is_told_of_the_passing_second) {
    settings.postureEnabled = false;
    scenario.advance(1160);
    EXPECT_EQ(told(), 0);
    controller.pause();
    scenario.advance(1);
    EXPECT_EQ(told(), 1);
    scenario.advance(600);
    EXPECT_EQ(told(), 1);
}

TEST_F(RemoteControlTest, nobody_is_told_of_the_passing_second_in_a_break_or_a_hold) {
    controller.startBreak(BreakKind::long_, BreakController::Initiator::user);
    scenario.advance(299);
    EXPECT_EQ(told(), 1);
    scenario.advance(2);
    EXPECT_EQ(told(), 2);
    scenario.platform.audio.input = true;
    scenario.advance(600);
    EXPECT_EQ(told(), 3);
    scenario.platform.idle.seconds = 90;
    scenario.advance(1); // the micro counter starts anew
    EXPECT_EQ(told(), 4);
    scenario.advance(600);
    EXPECT_EQ(told(), 4);
}

TEST_F(RemoteControlTest, ticks_that_come_late_move_what_was_told_only_by_two_seconds_at_once) {
    const auto due = next()->due;
    const auto lose = [this](Seconds seconds) {
        scenario.platform.loop.setClock(scenario.platform.loop.now() + seconds);
        scenario.advance(1);
    };
    lose(0.9);
    lose(0.5);
    EXPECT_EQ(told(), 0);
    EXPECT_EQ(next()->due, due);
    lose(0.5);
    lose(0.5);
    EXPECT_EQ(told(), 1);
    EXPECT_EQ(next()->due, *due + 2);
}

TEST_F(RemoteControlTest, setting_the_clock_moves_the_time_of_day_of_the_coming_break) {
    const auto due = next()->due;
    scenario.platform.loop.setClock(scenario.platform.loop.now() + 3600);
    scenario.advance(1);
    EXPECT_EQ(told(), 1);
    EXPECT_EQ(next()->due, *due + 3600);
}

TEST_F(RemoteControlTest, a_change_of_the_settings_is_told) {
    settings.microInterval = 600;
    scenario.advance(1);
    EXPECT_EQ(told(), 1);
    EXPECT_EQ(next()->due, at(scenario, 599));
}

TEST_F(RemoteControlTest, midnight_in_a_pause_is_told_for_the_figures_of_today) {
    scenario.stats.setToday({1, 0, 0, 0, 0, 0});
    controller.pause();
    scenario.advanceTo(QStringLiteral("2026-03-02T23:59:59"));
    const int before = told();
    scenario.advance(2);
    EXPECT_EQ(told(), before + 1);
    EXPECT_EQ(facts().today, Facts::Counts());
}

TEST_F(RemoteControlTest, a_wish_is_told_at_once) {
    EXPECT_FALSE(remote.pause(60));
    EXPECT_EQ(told(), 1);
    EXPECT_FALSE(remote.resume());
    EXPECT_EQ(told(), 2);
    EXPECT_FALSE(remote.resume());
    EXPECT_EQ(told(), 2);
}

TEST_F(RemoteControlTest, the_commands_do_what_the_menu_does) {
    scenario.advance(600);
    EXPECT_FALSE(remote.postpone(300));
    EXPECT_EQ(next()->due, at(scenario, 900));
    EXPECT_FALSE(remote.skip());
    EXPECT_EQ(next()->due, at(scenario, 1200));
    EXPECT_FALSE(remote.takeMicroBreak());
    EXPECT_EQ(facts().running->kind, QStringLiteral("micro"));
    EXPECT_FALSE(remote.skip());
    EXPECT_EQ(facts().phase, QStringLiteral("counting"));
    EXPECT_FALSE(remote.takeLongBreak());
    EXPECT_EQ(facts().running->kind, QStringLiteral("long"));
    EXPECT_FALSE(remote.pause({}));
    EXPECT_EQ(facts().phase, QStringLiteral("paused"));
    EXPECT_EQ(facts().pauseEnds, std::nullopt);
    EXPECT_FALSE(remote.resume());
    EXPECT_EQ(facts().phase, QStringLiteral("counting"));
    EXPECT_EQ(facts().today.skipped, 3);
}

TEST_F(RemoteControlTest, strict_mode_refuses_what_the_menu_does_not_offer) {
    settings.strictMode = true;
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.skip(); });
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.postpone(60); });
    EXPECT_FALSE(remote.takeMicroBreak());
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.skip(); });
    EXPECT_FALSE(remote.pause(60));
}

TEST_F(RemoteControlTest, without_the_permission_to_skip_or_postpone_both_are_refused) {
    settings.allowSkip = false;
    settings.allowPostpone = false;
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.skip(); });
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.postpone(60); });
}

TEST_F(RemoteControlTest, absurd_seconds_are_refused) {
    for (const qint64 seconds : {qint64{0}, qint64{-1}, std::numeric_limits<qint64>::min(),
                                 std::numeric_limits<qint64>::max(), BreakRemoteControl::longestWish + 1}) {
        expectRefusal(Refusal::Kind::badArgument, [&] { return remote.pause(seconds); });
        expectRefusal(Refusal::Kind::badArgument, [&] { return remote.postpone(seconds); });
    }
    EXPECT_FALSE(remote.pause(BreakRemoteControl::longestWish));
}

TEST_F(RemoteControlTest, what_does_not_apply_is_refused) {
    ASSERT_FALSE(remote.takeMicroBreak());
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.takeMicroBreak(); });
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.takeLongBreak(); });
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.postpone(60); });
    ASSERT_FALSE(remote.skip());
    scenario.onlyPlannedBreaks();
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.skip(); });
    expectRefusal(Refusal::Kind::notNow, [this] { return remote.postpone(60); });
}

TEST(RemoteControl, is_served_as_long_as_it_lasts) {
    Scenario scenario;
    FakeStatusPublisher publisher;
    {
        const BreakRemoteControl remote(publisher, scenario.controller, scenario.settings, scenario.stats,
                                        scenario.platform.loop);
        EXPECT_EQ(publisher.served, &remote);
    }
    EXPECT_EQ(publisher.served, nullptr);
}

} // namespace pavonel::test
