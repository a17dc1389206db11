#include "EndToEnd/Desktop.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(Ending, a_signal_after_a_break_loses_nothing) {
    Desktop desktop;
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 2}});
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays());
    ASSERT_TRUE(desktop.waitForNoOverlay());

    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);

    const auto today = desktop.statistics();
    EXPECT_GE(today[QStringLiteral("micro")].toInt(), 1);
    EXPECT_GE(today[QStringLiteral("screenSeconds")].toDouble(), 3);
    EXPECT_GE(today[QStringLiteral("breakSeconds")].toDouble(), 2);
}

TEST(Ending, a_signal_during_a_break_loses_nothing) {
    Desktop desktop;
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays());

    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);

    EXPECT_EQ(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
    EXPECT_EQ(desktop.statistics()[QStringLiteral("skipped")].toInt(), 0);
}

TEST(Ending, the_end_of_the_x_server_is_an_orderly_end) {
    Desktop desktop;
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays());

    desktop.endServer();

    EXPECT_NE(desktop.waitForExit(), -1) << "the program crashed or stayed";
    EXPECT_EQ(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
}

} // namespace pavonel::test
