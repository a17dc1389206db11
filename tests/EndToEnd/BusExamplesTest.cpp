#include "EndToEnd/ProgramOnABus.h"
#include "support/files.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <csignal>

namespace pavonel::test {

namespace {

/// What docs/bus.md shows to put into a bar's configuration or to type, run as the bar or the shell runs it.
struct BusExamples : ProgramOnABus {
    BusExamples() {
        QProcessEnvironment &environment = program.environment();
        const QString programs = QFileInfo(QStringLiteral(PAVONEL_PROGRAM)).path();
        environment.insert(QStringLiteral("PATH"), programs + u':' +
                                                       environment.value(QStringLiteral("PATH")) +
                                                       QStringLiteral(":/usr/lib/qt6/bin")); // Debian's qdbus
        environment.insert(QStringLiteral("TMUX_TMPDIR"), program.path(QStringLiteral("run")));
        writeFile(program.storePath(), R"({"didOnboard": true})");
    }

    /// The fenced examples in a language.
    static QStringList examples(const char *language) {
        const QString text = QString::fromUtf8(readFile(QStringLiteral(PAVONEL_SOURCE_DIR "/docs/bus.md")));
        const QRegularExpression block(QStringLiteral("```%1\n(.*?)```").arg(QString::fromUtf8(language)),
                                       QRegularExpression::DotMatchesEverythingOption);
        QStringList found;
        for (auto match = block.globalMatch(text); match.hasNext();)
            found.append(match.next().captured(1));
        EXPECT_FALSE(found.isEmpty()) << language;
        return found;
    }

    /// What stands behind the equals sign, without quotes.
    static QString value(const QString &example, const char *key) {
        const QRegularExpression line(QStringLiteral("^%1 = \"?(.*?)\"?$").arg(QString::fromUtf8(key)),
                                      QRegularExpression::MultilineOption);
        return line.match(example).captured(1);
    }

    /// Modules of Waybar by their place in the document.
    static QJsonObject waybarModule(int index) {
        const QString module = examples("json").filter(QStringLiteral("custom/pavonel")).value(index);
        const QJsonObject configuration = QJsonDocument::fromJson('{' + module.toUtf8() + '}').object();
        return configuration.value(u"custom/pavonel").toObject();
    }

    ChildProcess::Result shell(const QString &commands) {
        return ChildProcess::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), commands},
                                 program.environment());
    }

    void expectLine(const QString &commands) {
        ASSERT_FALSE(commands.isEmpty());
        const auto result = shell(commands);
        EXPECT_EQ(result.status, 0) << result.errors.constData();
        EXPECT_TRUE(result.output.startsWith("Micro break: ")) << result.output.constData();
    }

    QString phase() {
        const auto reply = program.run({QStringLiteral("--status"), QStringLiteral("--json")});
        return QJsonDocument::fromJson(reply.output)[u"phase"].toString();
    }

    /// A command that pauses, and at the next time resumes.
    void expectToggle(const QString &commands) {
        for (const char *expected : {"paused", "counting"}) {
            EXPECT_EQ(shell(commands).status, 0) << commands.toStdString();
            EXPECT_TRUE(waitUntil([&] { return phase() == QString::fromUtf8(expected); })) << expected;
        }
    }
};

} // namespace

TEST_F(BusExamples, the_counting_module_of_waybar) {
    startAndWaitForTheName();
    const QJsonObject module = waybarModule(0);
    expectLine(module.value(u"exec").toString());
    expectToggle(module.value(u"on-click").toString());
    EXPECT_EQ(shell(module.value(u"on-click-right").toString()).status, 0);
    EXPECT_TRUE(waitUntil([this] { return phase() == QStringLiteral("breaking"); }));
}

TEST_F(BusExamples, the_following_module_of_waybar) {
    startAndWaitForTheName();
    const QJsonObject module = waybarModule(1);
    EXPECT_EQ(module.value(u"return-type").toString(), QStringLiteral("json"));
    ChildProcess follower(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), module.value(u"exec").toString()},
                          program.environment());
    QByteArray read;
    const auto line = [&](int index) {
        EXPECT_TRUE(waitUntil([&] {
            read += follower.process().readAllStandardOutput();
            return read.count('\n') > index;
        })) << follower.process().readAllStandardError().constData();
        return QJsonDocument::fromJson(read.split('\n').value(index)).object();
    };
    static const QRegularExpression timeOfDay(QStringLiteral(R"(\A\d\d:\d\d\z)"));
    const QJsonObject counting = line(0);
    EXPECT_TRUE(timeOfDay.match(counting.value(u"text").toString()).hasMatch()) << read.constData();
    EXPECT_EQ(counting.value(u"tooltip").toString(), QStringLiteral("Micro break"));
    EXPECT_EQ(counting.value(u"class").toString(), QStringLiteral("counting"));
    EXPECT_EQ(shell(waybarModule(0).value(u"on-click").toString()).status, 0);
    EXPECT_EQ(line(1).value(u"text").toString(), QStringLiteral("Paused"));
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(line(2).value(u"class").toString(), QStringLiteral("off"));
    EXPECT_TRUE(waitUntil([&] { return !follower.isRunning(); }));
}

TEST_F(BusExamples, the_module_of_polybar) {
    startAndWaitForTheName();
    const QString module = examples("ini").value(0);
    expectLine(value(module, "exec"));
    expectToggle(value(module, "click-left"));
}

TEST_F(BusExamples, the_block_of_i3status_rust) {
    startAndWaitForTheName();
    const QString block = examples("toml").value(0);
    expectLine(value(block, "command"));
    expectToggle(value(block, "cmd"));
}

TEST_F(BusExamples, the_status_line_of_tmux) {
    startAndWaitForTheName();
    const QString configuration = program.path(QStringLiteral("tmux.conf"));
    writeFile(configuration, examples("tmux").value(0).toUtf8());
    program.environment().insert(QStringLiteral("TERM"), QStringLiteral("xterm"));
    ChildProcess terminal(QStringLiteral("script"),
                          {QStringLiteral("-qfc"),
                           QStringLiteral("tmux -f '%1' new-session 'sleep infinity'").arg(configuration),
                           QStringLiteral("/dev/null")},
                          program.environment());
    QByteArray shown;
    EXPECT_TRUE(waitUntil([&] {
        shown += terminal.process().readAllStandardOutput();
        return shown.contains("Micro break: ");
    })) << shown.constData();
    EXPECT_EQ(shell(QStringLiteral("tmux kill-server")).status, 0);
}

TEST_F(BusExamples, what_is_typed_in_a_shell) {
    startAndWaitForTheName();
    const QStringList lines = examples("sh");
    for (const QString &commands : lines) {
        const auto result = shell(QStringLiteral("set -e\n") + commands);
        EXPECT_EQ(result.status, 0) << commands.toStdString() << result.errors.constData();
        EXPECT_EQ(result.errors, "") << commands.toStdString();
        if (commands.contains(QStringLiteral(".Pause "))) {
            EXPECT_EQ(phase(), QStringLiteral("paused"));
        }
    }
    EXPECT_EQ(phase(), QStringLiteral("counting")) << "the pause was not ended";
}

} // namespace pavonel::test
