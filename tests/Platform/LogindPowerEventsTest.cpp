#include "Platform/Linux/Bus/LogindPowerEvents.h"

#include "support/MockLogind.h"
#include "support/waitUntil.h"

#include <thread>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QStringList ourLock{QStringLiteral("sleep:Pavonel:delay")};

struct LogindPowerEventsTest : testing::Test {
    MockLogind logind;
};

} // namespace

TEST_F(LogindPowerEventsTest, sleep_and_waking_reach_the_main_thread) {
    LogindPowerEvents power(logind.connection());
    std::thread::id slept;
    std::thread::id woke;
    power.onSleep([&] { slept = std::this_thread::get_id(); });
    power.onWake([&] { woke = std::this_thread::get_id(); });
    logind.goToSleep();
    EXPECT_TRUE(waitUntil([&] { return slept == std::this_thread::get_id(); }));
    EXPECT_EQ(woke, std::thread::id());
    logind.wake();
    EXPECT_TRUE(waitUntil([&] { return woke == std::this_thread::get_id(); }));
}

TEST_F(LogindPowerEventsTest, the_machine_does_not_sleep_before_the_handler_has_returned) {
    LogindPowerEvents power(logind.connection());
    QStringList locksInHandler;
    power.onSleep([&] { locksInHandler = logind.locks(); });
    ASSERT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
    logind.goToSleep();
    EXPECT_TRUE(waitUntil([&] { return logind.locks().isEmpty(); })) << "the sleep is held up for ever";
    EXPECT_EQ(locksInHandler, ourLock);
}

TEST_F(LogindPowerEventsTest, after_waking_the_next_sleep_waits_too) {
    LogindPowerEvents power(logind.connection());
    for (int night = 0; night < 3; ++night) {
        ASSERT_TRUE(waitUntil([&] { return logind.locks() == ourLock; })) << night;
        logind.goToSleep();
        ASSERT_TRUE(waitUntil([&] { return logind.locks().isEmpty(); })) << night;
        logind.wake();
    }
}

TEST_F(LogindPowerEventsTest, a_login_manager_that_restarts_is_asked_again) {
    LogindPowerEvents power(logind.connection());
    int woken = 0;
    power.onWake([&] { ++woken; });
    ASSERT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
    logind.stop();
    EXPECT_FALSE(power.limitation().isEmpty());
    logind.start();
    EXPECT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
    logind.wake();
    EXPECT_TRUE(waitUntil([&] { return woken == 1; }));
    EXPECT_EQ(power.limitation(), QString());
}

TEST_F(LogindPowerEventsTest,
       after_a_login_manager_that_ended_in_the_middle_of_a_sleep_the_next_sleep_waits_too) {
    LogindPowerEvents power(logind.connection());
    ASSERT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
    logind.goToSleep();
    ASSERT_TRUE(waitUntil([&] { return logind.locks().isEmpty(); }));
    logind.stop();
    logind.start();
    EXPECT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
}

TEST_F(LogindPowerEventsTest, sleep_that_nobody_listens_to_does_no_harm) {
    LogindPowerEvents power(logind.connection());
    ASSERT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
    logind.goToSleep();
    EXPECT_TRUE(waitUntil([&] { return logind.locks().isEmpty(); }));
    logind.wake();
    EXPECT_TRUE(waitUntil([&] { return logind.locks() == ourLock; }));
}

TEST(LogindPowerEvents, without_a_system_bus_there_is_a_limitation_and_no_harm) {
    LogindPowerEvents power(QDBusConnection(QStringLiteral("no such bus")));
    power.onSleep([] {});
    power.onWake([] {});
    EXPECT_FALSE(power.limitation().isEmpty());
}

TEST(LogindPowerEvents, without_a_login_manager_there_is_a_limitation_and_no_harm) {
    const MessageBus bus;
    const auto connection = QDBusConnection::connectToBus(bus.address(), QStringLiteral("lonely-bus"));
    {
        LogindPowerEvents power(connection);
        EXPECT_FALSE(power.limitation().isEmpty());
        bool passed = false;
        QTimer::singleShot(100, [&] { passed = true; });
        EXPECT_TRUE(waitUntil([&] { return passed; }));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("lonely-bus"));
}

} // namespace pavonel::test
