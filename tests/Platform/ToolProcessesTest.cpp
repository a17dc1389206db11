#include "Platform/Posix/ToolProcesses.h"

#include "support/ToolFixture.h"

#include <thread>

namespace pavonel::test {

namespace {

class ToolRunnerTest : public ToolFixture {
protected:
    using Ended = ToolRunner::Ended;
    using NotStarted = ToolRunner::NotStarted;
    using Outcome = ToolRunner::Outcome;

    ToolProcesses runner{files()};

    Outcome runScript(const QByteArray &commands, const QStringList &arguments = {}) {
        return runner.run(addScript(QStringLiteral("tool"), commands), arguments);
    }
};

} // namespace

TEST_F(ToolRunnerTest, a_tool_gets_exactly_these_arguments) {
    EXPECT_EQ(
        runScript(recordArguments, {QStringLiteral("-R=a \"b\" $c"), QString(), QStringLiteral("it's\n*")}),
        Outcome(Ended{}));
    EXPECT_EQ(recordedArguments(), (QByteArrayList{"-R=a \"b\" $c", "", "it's\n*"}));
}

TEST_F(ToolRunnerTest, both_outputs_come_as_one_and_in_their_order) {
    EXPECT_EQ(runScript("echo one; echo two >&2; echo three; exit 3"),
              Outcome(Ended{3, "one\ntwo\nthree\n"}));
}

TEST_F(ToolRunnerTest, an_output_that_fills_every_buffer_is_read_to_its_end) {
    const Outcome outcome = runScript("head -c 3000000 /dev/zero; head -c 3000000 /dev/zero >&2");
    ASSERT_TRUE(std::holds_alternative<Ended>(outcome));
    EXPECT_EQ(std::get<Ended>(outcome).output.size(), 6'000'000);
}

TEST_F(ToolRunnerTest, a_tool_that_is_killed_has_not_succeeded) {
    const Outcome outcome = runScript("kill -KILL $$");
    ASSERT_TRUE(std::holds_alternative<Ended>(outcome));
    EXPECT_NE(std::get<Ended>(outcome).status, 0);
}

TEST_F(ToolRunnerTest, a_tool_ends_when_nobody_reads_it_although_we_do_not) {
    const auto usual = std::signal(SIGPIPE, SIG_IGN);
    const Outcome outcome = runScript("kill -PIPE $$");
    std::signal(SIGPIPE, usual);
    ASSERT_TRUE(std::holds_alternative<Ended>(outcome));
    EXPECT_NE(std::get<Ended>(outcome).status, 0);
}

TEST_F(ToolRunnerTest, a_tool_has_nothing_to_read) {
    EXPECT_EQ(runScript("read answer || echo nothing"), Outcome(Ended{0, "nothing\n"}));
}

TEST_F(ToolRunnerTest, our_own_tool_of_the_same_name_stands_in_for_a_path_that_does_not_exist) {
    addTool(QStringLiteral("gadget"), "echo stand-in");
    EXPECT_EQ(runner.run(path(QStringLiteral("nowhere/gadget")), {}), Outcome(Ended{0, "stand-in\n"}));
    addScript(QStringLiteral("gadget"), "echo itself");
    EXPECT_EQ(runner.run(path(QStringLiteral("gadget")), {}), Outcome(Ended{0, "itself\n"}));
}

TEST_F(ToolRunnerTest, what_cannot_be_started_says_why) {
    const QString missing = path(QStringLiteral("nowhere/gadget"));
    EXPECT_EQ(runner.run(missing, {}),
              Outcome(NotStarted{QStringLiteral("The program %1 is missing.").arg(missing)}));
    write(QStringLiteral("plain"), "text");
    const Outcome plain = runner.run(path(QStringLiteral("plain")), {});
    ASSERT_TRUE(std::holds_alternative<NotStarted>(plain));
    EXPECT_TRUE(std::get<NotStarted>(plain).reason.startsWith(QStringLiteral("The program ")));
    addTool(QStringLiteral("true"), "echo stand-in");
    EXPECT_TRUE(std::holds_alternative<NotStarted>(runner.run(QStringLiteral("true"), {})));
}

TEST_F(ToolRunnerTest, a_tool_runs_on_any_thread_without_an_event_loop) {
    Outcome outcome;
    std::thread([&] { outcome = runScript("echo there; exit 1"); }).join();
    EXPECT_EQ(outcome, Outcome(Ended{1, "there\n"}));
}

TEST_F(ToolRunnerTest, what_a_tool_leaves_running_is_not_waited_for) {
    EXPECT_EQ(runScript("echo done; (" + leaveAlive.trimmed() +
                        ") & while ! [ -e alive.pid ]; do sleep 0.01; done"),
              Outcome(Ended{0, "done\n"}));
}

} // namespace pavonel::test
