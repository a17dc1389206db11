#include "EndToEnd/ProgramOnABus.h"
#include "support/MockLogind.h"
#include "support/files.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

struct OneProgram : ProgramOnABus {
    void act(const char *action) {
        const auto reply = call(QStringLiteral("org.freedesktop.Application"), "ActivateAction",
                                {QString::fromUtf8(action), QVariantList(), QVariantMap()});
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    }
};

} // namespace

TEST_F(OneProgram, a_second_launch_reaches_the_first_and_exits_0) {
    startAndWaitForTheName();
    const auto second = program.run({});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.errors, "");
    EXPECT_TRUE(program.isRunning());
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, without_a_bus_a_second_launch_says_so_and_exits_0) {
    program.environment().insert(sessionBus, QStringLiteral("unix:path=/nonexistent"));
    program.start();
    const auto second = program.run({});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.errors, "pavonel: already running\n");
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, of_several_launched_at_the_same_moment_one_stays) {
    for (const QString &address : {bus->address(), QStringLiteral("unix:path=/nonexistent")}) {
        program.environment().insert(sessionBus, address);
        std::array<std::unique_ptr<ChildProcess>, 4> launched;
        for (auto &child : launched)
            child = std::make_unique<ChildProcess>(QStringLiteral(PAVONEL_PROGRAM), QStringList(),
                                                   program.environment());
        const auto count = [&](auto condition) {
            return std::count_if(launched.begin(), launched.end(),
                                 [&](auto &child) { return condition(*child); });
        };
        EXPECT_TRUE(waitUntil([&] { return count([](auto &child) { return child.isRunning(); }) == 1; }));
        EXPECT_EQ(count([](auto &child) {
                      return !child.isRunning() && child.process().exitStatus() == QProcess::NormalExit &&
                             child.process().exitCode() == 0;
                  }),
                  3);
        EXPECT_EQ(program.run({}).status, 0) << "the one that stays does not guard the store";
    }
}

TEST_F(OneProgram, after_one_was_killed_the_next_starts) {
    startAndWaitForTheName();
    program.kill();
    startAndWaitForTheName();
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, a_break_is_taken_and_skipped_from_outside) {
    startAndWaitForTheName();
    act("take-micro-break");
    act("skip");
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(program.storedToday(QStringLiteral("skipped")), 1);
}

TEST_F(OneProgram, a_script_has_the_environment_that_the_program_was_started_with) {
    program.environment().insert(QStringLiteral("PAVONEL_TEST_MARK"), QStringLiteral("peacock blue"));
    writeFile(program.storePath(),
              R"({"soundEnabled": false, "onBreakStartScript": "env >$HOME/new; mv $HOME/new $HOME/seen"})");
    startAndWaitForTheName();
    act("take-micro-break");
    const QString seen = program.path(QStringLiteral("seen"));
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(seen); }));
    QStringList variables = QString::fromLocal8Bit(readFile(seen)).split(u'\n', Qt::SkipEmptyParts);
    variables.removeIf([](const QString &variable) { // the shell's own
        return variable.startsWith(u"PWD=") || variable.startsWith(u"OLDPWD=") ||
               variable.startsWith(u"SHLVL=") || variable.startsWith(u"_=");
    });
    variables.sort();
    QStringList given = program.environment().toStringList();
    given.sort();
    EXPECT_EQ(variables, given);
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, an_update_from_the_command_line_beside_it_leaves_its_store_alone) {
    writeFile(program.storePath(), R"({"didOnboard": true, "autoUpdate": false})");
    startAndWaitForTheName();
    EXPECT_EQ(program.run({QStringLiteral("--update-now")}).status, 1);
    EXPECT_FALSE(program.stored().contains(u"lastUpdateCheck"));
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, the_loss_of_the_session_bus_does_no_harm) {
    startAndWaitForTheName();
    act("skip"); // it answers when it has started
    bus.reset();
    EXPECT_FALSE(waitUntil([this] { return !program.isRunning(); }, 3000)) << "the program ended by itself";
    EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST_F(OneProgram, the_store_is_on_disk_before_the_machine_sleeps) {
    MockLogind logind;
    program.environment().insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), logind.address());
    startAndWaitForTheName();
    ASSERT_TRUE(waitUntil([&] { return logind.locks().size() == 1; }));
    act("take-micro-break");
    act("skip");
    logind.goToSleep();
    ASSERT_TRUE(waitUntil([&] { return logind.locks().isEmpty(); }));
    program.kill(); // the battery ran empty
    EXPECT_EQ(program.storedToday(QStringLiteral("skipped")), 1);
}

} // namespace pavonel::test
