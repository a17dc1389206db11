#include "Core/StatusCommand.h"

#include "support/Printing.h"
#include "support/VirtualMainLoop.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Facts = Status::Facts;
using Failure = RunningPavonel::Failure;

struct FakeRunningPavonel final : RunningPavonel {
    Answer answer = Status();
    std::function<void()> changed;

    Answer status() override { return answer; }
    void follow(std::function<void()> handler) override { changed = std::move(handler); }
};

QJsonObject object(const char *json) {
    return QJsonDocument::fromJson(json).object();
}

struct StatusCommandTest : testing::Test {
    VirtualMainLoop loop;
    FakeRunningPavonel running;
    QStringList printed;
    QStringList complaints;
    bool isRead = true;
    Status status;

    StatusCommandTest() {
        status.facts.phase = QStringLiteral("counting");
        status.line = QStringLiteral("Micro break: 10:00");
        running.answer = status;
    }

    StatusCommand command(StatusCommand::Form form) {
        return {loop, running, form,
                [this](const QString &line) {
                    printed.append(line);
                    return isRead;
                },
                [this](const QString &line) {
                    complaints.append(line);
                    return true;
                }};
    }
    StatusCommand json() { return command(StatusCommand::Form::json); }
    StatusCommand line() { return command(StatusCommand::Form::line); }

    void change(const char *phase) {
        status.facts.phase = QString::fromUtf8(phase);
        change(status);
    }
    void change(RunningPavonel::Answer answer) {
        running.answer = std::move(answer);
        running.changed();
    }
};

} // namespace

TEST_F(StatusCommandTest, people_get_the_line_of_the_menu) {
    EXPECT_EQ(line().tell(), 0);
    EXPECT_EQ(printed, QStringList(QStringLiteral("Micro break: 10:00")));
}

TEST_F(StatusCommandTest, a_title_of_several_lines_is_one_line) {
    status.line = QStringLiteral("Lunch\nand more: 10:00");
    running.answer = status;
    line().tell();
    EXPECT_EQ(printed, QStringList(QStringLiteral("Lunch and more: 10:00")));
}

TEST_F(StatusCommandTest, programs_get_one_line_of_json) {
    EXPECT_EQ(json().tell(), 0);
    ASSERT_EQ(printed.size(), 1);
    EXPECT_FALSE(printed[0].contains(u'\n'));
    EXPECT_EQ(object(printed[0].toUtf8()).value(u"phase").toString(), QStringLiteral("counting"));
}

TEST_F(StatusCommandTest, without_a_pavonel_it_says_so_with_status_3) {
    running.answer = Failure::notRunning;
    EXPECT_EQ(line().tell(), 3);
    EXPECT_EQ(json().tell(), 3);
    EXPECT_EQ(printed,
              QStringList({QStringLiteral("Pavonel is not running"), QStringLiteral("{\"running\":false}")}));
    EXPECT_EQ(complaints, QStringList());
}

TEST_F(StatusCommandTest, one_that_does_not_answer_is_complained_of) {
    running.answer = Failure::noAnswer;
    EXPECT_EQ(json().tell(), 1);
    EXPECT_EQ(printed, QStringList());
    EXPECT_EQ(complaints.size(), 1);
}

TEST_F(StatusCommandTest, what_cannot_be_written_is_a_failure) {
    isRead = false;
    EXPECT_EQ(line().tell(), 1);
}

TEST_F(StatusCommandTest, following_prints_a_line_now_and_at_each_change) {
    StatusCommand command = json();
    command.follow();
    loop.advance(1);
    EXPECT_EQ(printed.size(), 1);
    change("paused");
    EXPECT_EQ(printed.size(), 2);
    status.screenSeconds = 5;
    change("paused");
    EXPECT_EQ(printed.size(), 2);
    EXPECT_EQ(loop.quits, std::vector<int>());
}

TEST_F(StatusCommandTest, following_ends_when_there_is_no_pavonel_any_more) {
    StatusCommand command = json();
    command.follow();
    loop.advance(1);
    change(Failure::notRunning);
    EXPECT_EQ(printed.last(), QStringLiteral("{\"running\":false}"));
    EXPECT_EQ(loop.quits, std::vector{3});
}

TEST_F(StatusCommandTest, following_where_there_is_none_ends_at_once) {
    running.answer = Failure::notRunning;
    StatusCommand command = line();
    command.follow();
    loop.advance(1);
    EXPECT_EQ(loop.quits, std::vector{3});
}

TEST_F(StatusCommandTest, following_ends_when_nobody_reads) {
    StatusCommand command = json();
    command.follow();
    loop.advance(1);
    isRead = false;
    change("paused");
    EXPECT_EQ(loop.quits, std::vector{1});
}

TEST(StatusJson, has_a_member_for_everything) {
    Status status;
    status.facts.phase = QStringLiteral("breaking");
    status.facts.hold = QStringLiteral("audio");
    status.facts.next = Facts::Next{QStringLiteral("planned"), QStringLiteral("Tea \"&\" talk"), 1600, {}};
    status.facts.running = Facts::Running{QStringLiteral("long"), QStringLiteral("Long break"), 1300};
    status.facts.pauseEnds = 1500;
    status.facts.today = {4, 3, 2, 1};
    status.line = QStringLiteral("On break · 5:00");
    status.screenSeconds = 3600;
    status.breakSeconds = 60;
    const QString json = statusJson(status, Instant{std::chrono::duration<Seconds>(1000)});
    EXPECT_EQ(object(json.toUtf8()), object(R"({
        "running": true, "line": "On break · 5:00", "phase": "breaking", "hold": "audio",
        "next": {"kind": "planned", "title": "Tea \"&\" talk", "due": 1600, "remaining": 600},
        "break": {"kind": "long", "title": "Long break", "ends": 1300, "remaining": 300},
        "pauseEnds": 1500,
        "today": {"micro": 4, "long": 3, "planned": 2, "skipped": 1,
                  "screenSeconds": 3600, "breakSeconds": 60}})"))
        << json.toStdString();
}

TEST(StatusJson, what_there_is_not_is_null) {
    Status status;
    status.facts.phase = QStringLiteral("paused");
    const QString json = statusJson(status, Instant());
    EXPECT_EQ(object(json.toUtf8()), object(R"({
        "running": true, "line": "", "phase": "paused", "hold": null, "next": null, "break": null,
        "pauseEnds": null,
        "today": {"micro": 0, "long": 0, "planned": 0, "skipped": 0, "screenSeconds": 0, "breakSeconds": 0}})"))
        << json.toStdString();
}

TEST(StatusJson, what_is_left_stands_still_while_the_time_of_day_is_not_known) {
    Status status;
    status.facts.next = Facts::Next{QStringLiteral("micro"), QStringLiteral("Micro break"), {}, 90};
    const QJsonObject next = object(statusJson(status, Instant()).toUtf8()).value(u"next").toObject();
    EXPECT_TRUE(next.value(u"due").isNull());
    EXPECT_EQ(next.value(u"remaining").toInt(), 90);
}

TEST(StatusJson, nothing_is_left_of_what_is_past) {
    Status status;
    status.facts.next = Facts::Next{QStringLiteral("micro"), QStringLiteral("Micro break"), 10, {}};
    const QString json = statusJson(status, Instant{std::chrono::duration<Seconds>(12)});
    EXPECT_EQ(object(json.toUtf8()).value(u"next").toObject().value(u"remaining").toInt(-1), 0);
}

} // namespace pavonel::test
