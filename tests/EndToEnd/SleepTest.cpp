#include "EndToEnd/Desktop.h"
#include "support/MockLogind.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// The machine sleeps and wakes under the running program.
struct Sleep : testing::Test {
    Sleep() { desktop.environment().insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), logind.address()); }

    void start(const QJsonObject &settings) {
        desktop.store(settings);
        desktop.startProgram();
        ASSERT_TRUE(waitUntil([this] { return logind.locks().size() == 1; })) << "nothing delays the sleep";
    }

    /// The machine sleeps once nothing holds it up.
    void goToSleep() {
        logind.goToSleep();
        ASSERT_TRUE(waitUntil([this] { return logind.locks().isEmpty(); }));
    }

    void wakeUp() {
        logind.wake();
        ASSERT_TRUE(waitUntil([this] { return logind.locks().size() == 1; }));
    }

    double seconds(const char *which) const {
        return desktop.statistics()[QLatin1StringView(which)].toDouble();
    }
    int count(const char *which) const { return desktop.statistics()[QLatin1StringView(which)].toInt(); }

    MockLogind logind;
    Desktop desktop;
};

} // namespace

TEST_F(Sleep, waking_while_counting_starts_the_count_afresh) {
    constexpr double interval = 12;
    start({{QStringLiteral("microInterval"), interval}, {QStringLiteral("microDuration"), 600}});
    double countedBefore = 0;
    for (int sleeps = 0; sleeps < 20 && countedBefore < 3; ++sleeps) {
        EXPECT_FALSE(waitUntil([] { return false; }, 1000)); // at work
        goToSleep();
        countedBefore = seconds("screenSeconds"); // what is counted is on disk before the sleep
        wakeUp();
    }
    ASSERT_GE(countedBefore, 3);

    ASSERT_TRUE(desktop.waitForOverlays());

    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(seconds("screenSeconds"), countedBefore + interval);
    EXPECT_EQ(count("skipped"), 0);
}

TEST_F(Sleep, waking_during_a_heads_up_withdraws_the_notice_and_the_countdown) {
    constexpr int counting = 20; // seconds to the notice: time to see that there is none
    start({{QStringLiteral("microInterval"), 600}, {QStringLiteral("preNotifySeconds"), 600 - counting}});
    ASSERT_TRUE(
        waitUntil([&] { return desktop.shows("Pavonel Heads-up") && desktop.shows("Pavonel Countdown"); }));

    goToSleep();
    wakeUp();

    EXPECT_TRUE(
        waitUntil([&] { return !desktop.shows("Pavonel Heads-up") && !desktop.shows("Pavonel Countdown"); }));
    // The count starts from 0: then the next notice is due.
    EXPECT_TRUE(waitUntil([&] { return desktop.shows("Pavonel Heads-up"); }));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(seconds("screenSeconds"), 2 * counting);
    EXPECT_EQ(count("skipped"), 0);
    EXPECT_EQ(count("micro"), 0);
}

TEST_F(Sleep, a_break_is_not_touched_by_sleep_and_goes_on_after_it) {
    constexpr double length = 30; // time to sleep and to wake in it
    start({{QStringLiteral("microInterval"), 2}, {QStringLiteral("microDuration"), length}});
    ASSERT_TRUE(desktop.waitForOverlays());

    goToSleep();
    const double brokenBefore = seconds("breakSeconds");
    wakeUp();

    EXPECT_LT(brokenBefore, length);
    EXPECT_EQ(desktop.overlays().size(), std::size_t{Desktop::screens});
    ASSERT_TRUE(desktop.waitForNoOverlay());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(seconds("breakSeconds"), length);
    EXPECT_GE(count("micro"), 1);
    EXPECT_EQ(count("skipped"), 0);
}

} // namespace pavonel::test
