#include "EndToEnd/ProgramOnABus.h"
#include "support/files.h"

#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>

#include <csignal>
#include <optional>

namespace pavonel::test {

namespace {

const QString status = QStringLiteral("--status");
const QString json = QStringLiteral("--json");
const QString exportStats = QStringLiteral("--export-stats");

struct StatusTest : ProgramOnABus {
    void start(const QByteArray &store = R"({"didOnboard": true})") {
        writeFile(program.storePath(), store);
        startAndWaitForTheName();
    }

    QDBusMessage command(const char *method, const QVariantList &arguments = {}) {
        return call(QStringLiteral("org.pavonel.Pavonel1"), method, arguments);
    }

    QJsonObject told() const {
        const auto result = program.run({status, json});
        EXPECT_EQ(result.status, 0) << result.errors.constData();
        EXPECT_EQ(result.output.count('\n'), 1) << result.output.constData();
        return QJsonDocument::fromJson(result.output).object();
    }

    QString phase() const { return told().value(u"phase").toString(); }
};

/// Reads what a process that follows prints.
struct Follower {
    explicit Follower(const QProcessEnvironment &environment)
        : process(QStringLiteral(PAVONEL_PROGRAM), {status, json, QStringLiteral("--follow")}, environment) {}

    bool waitForLines(qsizetype count) {
        return waitUntil([&] {
            read += process.process().readAllStandardOutput();
            return read.count('\n') >= count;
        });
    }
    QJsonObject line(int index) const {
        return QJsonDocument::fromJson(read.split('\n').value(index)).object();
    }
    bool waitForEnd() {
        return waitUntil([this] { return !process.isRunning(); });
    }

    ChildProcess process;
    QByteArray read;
};

} // namespace

TEST_F(StatusTest, people_get_one_line) {
    start();
    const auto result = program.run({status});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    static const QRegularExpression line(QStringLiteral(R"(\AMicro break: (20:00|19:\d\d)\n\z)"));
    EXPECT_TRUE(line.match(QString::fromUtf8(result.output)).hasMatch()) << result.output.constData();
}

TEST_F(StatusTest, programs_get_json) {
    start();
    const QJsonObject next = told().value(u"next").toObject();
    EXPECT_EQ(next.value(u"kind").toString(), QStringLiteral("micro"));
    EXPECT_GT(next.value(u"due").toDouble(), 1.7e9);
}

TEST_F(StatusTest, without_one_it_says_so_with_status_3_and_starts_none) {
    const auto line = program.run({status});
    EXPECT_EQ(line.status, 3);
    EXPECT_EQ(line.output, "Pavonel is not running\n");
    for (const QStringList &arguments :
         {QStringList{status, json}, QStringList{status, json, QStringLiteral("--follow")}}) {
        const auto result = program.run(arguments);
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.output, "{\"running\":false}\n");
    }
    EXPECT_FALSE(outsider.interface()->isServiceRegistered(service).value());
    EXPECT_EQ(QDir(program.storeFolder()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(StatusTest, without_a_bus_none_is_running) {
    program.environment().insert(sessionBus, QStringLiteral("unix:path=/nonexistent"));
    EXPECT_EQ(program.run({status}).status, 3);
}

TEST_F(StatusTest, one_that_hangs_is_complained_of) {
    start();
    program.send(SIGSTOP);
    const auto result = program.run({status});
    program.send(SIGCONT);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.errors.startsWith("pavonel: ")) << result.errors.constData();
}

TEST_F(StatusTest, the_older_switches_come_first) {
    start();
    EXPECT_TRUE(program.run({status, QStringLiteral("--version")}).output.startsWith("pavonel "));
    EXPECT_EQ(program.run({exportStats, status, QStringLiteral("--login-status")}).output, "enabled\n");
}

TEST_F(StatusTest, whoever_follows_gets_a_line_at_each_change_and_the_end) {
    start();
    Follower follower(program.environment());
    ASSERT_TRUE(follower.waitForLines(1));
    EXPECT_EQ(follower.line(0).value(u"phase").toString(), QStringLiteral("counting"));
    EXPECT_EQ(command("Pause", {600u}).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(follower.waitForLines(2));
    EXPECT_EQ(follower.line(1).value(u"phase").toString(), QStringLiteral("paused"));
    EXPECT_EQ(program.end(SIGTERM), 0);
    ASSERT_TRUE(follower.waitForEnd());
    ASSERT_TRUE(follower.waitForLines(3));
    EXPECT_EQ(follower.read.split('\n').value(2), "{\"running\":false}");
    EXPECT_EQ(follower.process.process().exitCode(), 3);
}

/// Nothing is held for what others share, so that the births of their processes do not keep seconds from
/// waiting.
TEST_F(StatusTest, a_break_comes_when_all_its_seconds_are_counted_though_they_waited) {
    start(R"({"didOnboard": true, "pauseOnScreenSharing": false,
              "microInterval": 14, "preNotifySeconds": 3, "microDuration": 600})");
    Follower follower(program.environment());
    const auto told = [&](const char *phase) -> std::optional<QJsonObject> {
        for (int i = 0; i < follower.read.count('\n'); ++i) {
            if (follower.line(i).value(u"phase") == QLatin1String(phase))
                return follower.line(i);
        }
        return {};
    };
    const auto screenSeconds = [](const QJsonObject &status) {
        return status.value(u"today").toObject().value(u"screenSeconds").toInt();
    };
    for (int lines = 1; !told("breaking"); ++lines)
        ASSERT_TRUE(follower.waitForLines(lines));
    ASSERT_TRUE(told("headsUp"));
    EXPECT_GE(screenSeconds(*told("headsUp")), 11);
    EXPECT_EQ(screenSeconds(*told("breaking")), 14);
}

TEST_F(StatusTest, a_follower_ends_when_nobody_reads_though_nothing_changes) {
    start();
    ASSERT_EQ(command("PauseIndefinitely").type(), QDBusMessage::ReplyMessage);
    const auto pipeline = ChildProcess::run( // which ends with the last of its two
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("\"$0\" --status --json --follow | head -n 1"),
         QStringLiteral(PAVONEL_PROGRAM)},
        program.environment());
    EXPECT_EQ(pipeline.status, 0);
    EXPECT_EQ(pipeline.output.count('\n'), 1);
}

TEST_F(StatusTest, a_follower_ends_with_its_bus) {
    start();
    Follower follower(program.environment());
    ASSERT_TRUE(follower.waitForLines(1));
    bus.reset();
    EXPECT_TRUE(follower.waitForEnd());
}

TEST_F(StatusTest, commands_over_the_bus_are_carried_out) {
    start();
    command("TakeLongBreak");
    EXPECT_EQ(told().value(u"break").toObject().value(u"kind").toString(), QStringLiteral("long"));
    command("Skip");
    EXPECT_EQ(phase(), QStringLiteral("counting"));
    command("PauseIndefinitely");
    EXPECT_EQ(phase(), QStringLiteral("paused"));
    command("Resume");
    EXPECT_EQ(phase(), QStringLiteral("counting"));
    EXPECT_EQ(told().value(u"today").toObject().value(u"skipped").toInt(), 1);
}

TEST_F(StatusTest, strict_mode_refuses_over_the_bus) {
    start(R"({"didOnboard": true, "strictMode": true})");
    ASSERT_EQ(command("TakeMicroBreak").type(), QDBusMessage::ReplyMessage);
    const QDBusMessage reply = command("Skip");
    EXPECT_EQ(reply.errorName(), QStringLiteral("org.pavonel.Pavonel1.Error.Refused"));
    EXPECT_FALSE(reply.errorMessage().isEmpty());
    EXPECT_EQ(phase(), QStringLiteral("breaking"));
}

TEST_F(StatusTest, the_statistics_are_printed_whether_one_runs_or_not) {
    const QByteArray days =
        R"({"2026-03-09": {"micro": 1, "long": 2, "planned": 3, "skipped": 4, "screenSeconds": 5.4, "breakSeconds": 6}})";
    const QByteArray store = R"({"didOnboard": true, "stats.days": {"data": ")" + days.toBase64() + "\"}}";
    const QByteArray csv =
        "date,micro,long,planned,skipped,screenSeconds,breakSeconds\n2026-03-09,1,2,3,4,5,6\n";
    writeFile(program.storePath(), store);
    EXPECT_EQ(program.run({exportStats}).output, csv);
    EXPECT_EQ(readFile(program.storePath()), store);
    start(store);
    const auto beside = program.run({exportStats});
    EXPECT_EQ(beside.status, 0);
    EXPECT_TRUE(beside.output.startsWith(csv)) << beside.output.constData();
    const QJsonDocument asJson = QJsonDocument::fromJson(program.run({exportStats, json}).output);
    EXPECT_EQ(asJson[0][u"date"].toString(), QStringLiteral("2026-03-09"));
}

TEST_F(StatusTest, an_export_of_a_damaged_store_tells_of_it_and_leaves_it_alone) {
    const QByteArray days =
        R"({"2026-03-08": {"micro": 1},
            "2026-03-09": {"micro": 1, "long": 2, "planned": 3, "skipped": 4, "screenSeconds": 5, "breakSeconds": 6}})";
    for (const auto &[store, rows] :
         {std::pair(R"({"stats.days": {"data": ")" + days.toBase64() + "\"}}", 2),
          std::pair(QByteArray("{\"stats.days\": "), 1), std::pair(QByteArray(R"({"stats.days": 5})"), 1)}) {
        writeFile(program.storePath(), store);
        const auto result = program.run({exportStats});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output.count('\n'), rows) << result.output.constData();
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
        EXPECT_TRUE(result.errors.startsWith("pavonel: ")) << result.errors.constData();
        EXPECT_EQ(readFile(program.storePath()), store);
    }
}

TEST_F(StatusTest, what_cannot_be_written_is_a_failure) {
    start();
    for (const QString &order : {status, exportStats}) {
        const auto result =
            ChildProcess::run(QStringLiteral("/bin/sh"),
                              {QStringLiteral("-c"), QStringLiteral("exec \"$0\" \"$1\" >/dev/full"),
                               QStringLiteral(PAVONEL_PROGRAM), order},
                              program.environment());
        EXPECT_EQ(result.status, 1) << order.toStdString();
    }
}

} // namespace pavonel::test
