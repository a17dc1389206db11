#include "EndToEnd/Desktop.h"
#include "EndToEnd/HeadlessProgram.h"
#include "EndToEnd/Remote.h"
#include "support/MessageBus.h"
#include "support/SessionManager.h"

#include <algorithm>
#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// The roads out.
enum class Road { sigterm, sigint, sighup, menu, endOfSession };

const char *nameOf(Road road) {
    switch (road) {
    case Road::sigterm:
        return "SIGTERM";
    case Road::sigint:
        return "SIGINT";
    case Road::sighup:
        return "SIGHUP";
    case Road::menu:
        return "the_menu";
    case Road::endOfSession:
        return "the_end_of_the_session";
    }
    return "";
}

/// Milliseconds that are a second on a quiet machine. On a busy one they are more: as often as it goes into a
/// second there, the program tells its version and ends.
qint64 aSecondHere() {
    constexpr int times = 12;
    const HeadlessProgram program;
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(program.run({QStringLiteral("--version")}).status, 0);
    return std::max<qint64>(1000, times * clock.elapsed());
}

/// A desktop with a break that just began, to be left in the middle.
struct InABreak {
    InABreak() {
        desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        desktop.environment().insert(QStringLiteral("SESSION_MANAGER"), session.address());
        desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
        desktop.startProgram();
        EXPECT_TRUE(desktop.waitForOverlays());
        EXPECT_TRUE(remote().waitForIt());
    }

    Remote remote() { return Remote(desktop.environment()); }

    void ask(Road road) {
        switch (road) {
        case Road::sigterm:
            return desktop.sendSignal(SIGTERM);
        case Road::sigint:
            return desktop.sendSignal(SIGINT);
        case Road::sighup:
            return desktop.sendSignal(SIGHUP);
        case Road::menu:
            return remote().choose(QStringLiteral("Quit Pavonel"));
        case Road::endOfSession:
            return session.end();
        }
    }

    MessageBus bus;
    SessionManager session;
    Desktop desktop;
};

} // namespace

class Leaving : public testing::TestWithParam<Road> {};

INSTANTIATE_TEST_SUITE_P(Roads, Leaving,
                         testing::Values(Road::sigterm, Road::sigint, Road::sighup, Road::menu,
                                         Road::endOfSession),
                         [](const auto &road) { return std::string(nameOf(road.param)); });

/// A busy machine can be slow once; what waits for something is slow each time.
TEST_P(Leaving, in_the_middle_of_a_break_takes_less_than_a_second_and_loses_nothing) {
    qint64 took = 0;
    bool quick = false;
    for (int attempts = 0; attempts < 5 && !quick; ++attempts) {
        InABreak in;
        QElapsedTimer sinceAsked;
        sinceAsked.start();
        in.ask(GetParam());
        ASSERT_EQ(in.desktop.waitForExit(), 0);
        took = sinceAsked.elapsed();
        EXPECT_TRUE(in.desktop.overlays().empty());
        EXPECT_EQ(in.desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
        EXPECT_EQ(in.desktop.statistics()[QStringLiteral("skipped")].toInt(), 0);
        quick = took < aSecondHere();
    }
    EXPECT_TRUE(quick) << took << " milliseconds, in the last of five attempts";
}

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

TEST(Ending, the_end_of_the_x_server_during_a_break_is_an_orderly_end) {
    Desktop desktop;
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays());

    desktop.endServer();

    EXPECT_NE(desktop.waitForExit(), -1) << "the program crashed or stayed";
    EXPECT_EQ(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
}

TEST(Ending, the_end_of_the_x_server_while_counting_is_an_orderly_end) {
    Desktop desktop;
    desktop.store({{QStringLiteral("microInterval"), 600}, {QStringLiteral("preNotifySeconds"), 597}});
    desktop.startProgram();
    ASSERT_TRUE(waitUntil([&] { return desktop.shows("Pavonel Heads-up"); })); // so it counted 3 s

    desktop.endServer();

    EXPECT_NE(desktop.waitForExit(), -1) << "the program crashed or stayed";
    EXPECT_GE(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
}

/// Without a bus: its library guards a program that found one from the loss of a reader, too.
TEST(Ending, the_end_of_the_x_server_is_an_orderly_end_where_nobody_reads_the_complaints) {
    Desktop desktop;
    for (const char *bus : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        desktop.environment().insert(QString::fromLatin1(bus), QStringLiteral("unix:path=/nowhere"));
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
    desktop.startProgramUnread();
    ASSERT_TRUE(desktop.waitForOverlays());

    desktop.endServer();

    EXPECT_NE(desktop.waitForExit(), -1) << "the program crashed or stayed";
    EXPECT_EQ(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
}

TEST(Ending, the_loss_of_the_session_bus_during_a_break_lets_it_go_on_to_its_end) {
    std::optional<MessageBus> bus(std::in_place);
    Desktop desktop;
    desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus->address());
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 6}});
    desktop.startProgram();
    ASSERT_TRUE(Remote(desktop.environment()).waitForIt());
    ASSERT_TRUE(desktop.waitForOverlays());

    bus.reset();

    ASSERT_TRUE(desktop.waitForNoOverlay());
    ASSERT_TRUE(desktop.waitForOverlays()) << "the next break did not come";
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(desktop.statistics()[QStringLiteral("micro")].toInt(), 1);
}

} // namespace pavonel::test
