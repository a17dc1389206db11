#include "EndToEnd/Desktop.h"
#include "EndToEnd/Remote.h"
#include "support/MessageBus.h"

#include <QFile>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr const char *settingsWindow = "Pavonel";

/// Somebody who has never had the program.
struct FirstSteps : testing::Test {
    FirstSteps() {
        desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        EXPECT_TRUE(QFile::remove(desktop.storePath()));
    }

    void start() {
        desktop.startProgram();
        ASSERT_TRUE(Remote(desktop.environment()).waitForIt());
    }

    bool settingsAppear() {
        return waitUntil([this] { return desktop.shows(settingsWindow); });
    }

    void startForTheSecondTime() {
        start();
        ASSERT_TRUE(settingsAppear());
        ASSERT_EQ(desktop.endProgram(SIGTERM), 0);
        start();
    }

    MessageBus bus;
    Desktop desktop;
};

} // namespace

TEST_F(FirstSteps, the_first_start_shows_the_settings) {
    start();
    EXPECT_TRUE(settingsAppear());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.stored()[QStringLiteral("didOnboard")], QJsonValue(true));
}

TEST_F(FirstSteps, the_second_start_does_not) {
    startForTheSecondTime();
    EXPECT_FALSE(waitUntil([this] { return desktop.shows(settingsWindow); }, 2000));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(FirstSteps, a_launch_while_it_runs_shows_the_settings_of_the_one_that_runs) {
    startForTheSecondTime();
    const auto launched = ChildProcess::run(QStringLiteral(PAVONEL_PROGRAM), {}, desktop.environment());
    EXPECT_EQ(launched.status, 0);
    EXPECT_EQ(launched.errors, "");
    EXPECT_TRUE(settingsAppear());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

} // namespace pavonel::test
