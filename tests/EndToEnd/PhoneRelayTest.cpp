#include "EndToEnd/HeadlessProgram.h"
#include "support/HttpServer.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QFile>
#include <QJsonDocument>
#include <QTcpSocket>

#include <algorithm>
#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// The program, paired, with one short break and then none for long.
class PhoneRelay : public ::testing::Test {
protected:
    HeadlessProgram program;

    void startWith(const QString &service) {
        const QJsonObject store{
            {QStringLiteral("phonePairToken"), QStringLiteral("secret")},
            {QStringLiteral("didOnboard"), true},
            {QStringLiteral("microInterval"), 2},
            {QStringLiteral("microDuration"), 2},
            {QStringLiteral("preNotifySeconds"), 0},
            {QStringLiteral("longEnabled"), false},
            {QStringLiteral("naturalBreakEnabled"), false},
            {QStringLiteral("onBreakStartScript"), QStringLiteral("date +%s >> '%1'").arg(breakTimes())},
            {QStringLiteral("soundEnabled"), false}};
        writeFile(program.storePath(), QJsonDocument(store).toJson());
        program.environment().insert(QStringLiteral("PAVONEL_PAIR_HOST"), service);
        program.start();
    }

    QString breakTimes() const { return program.storeFolder() + QStringLiteral("/breaks"); }

    /// Whether one began soon after another, so far.
    bool breaksFollowEachOther() const {
        constexpr int soon = 15; // seconds; four on a quiet machine
        const QByteArrayList times = readFile(breakTimes()).trimmed().split('\n');
        return std::ranges::adjacent_find(times, [](const QByteArray &one, const QByteArray &next) {
                   return next.toLongLong() - one.toLongLong() < soon;
               }) != times.end();
    }

    int storedBreaks() const {
        const QString data = program.stored().value(u"stats.days").toObject().value(u"data").toString();
        int breaks = 0;
        const auto days = QJsonDocument::fromJson(QByteArray::fromBase64(data.toLatin1())).object();
        for (const QJsonValue day : days)
            breaks += day.toObject().value(u"micro").toInt();
        return breaks;
    }
};

} // namespace

TEST_F(PhoneRelay, a_break_is_told_with_one_post_and_one_delete) {
    const HttpServer server(HttpServer::respond(200, "{}"));
    startWith(server.url("/api").toString());
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() >= 2; })) << "no break was told";
    EXPECT_EQ(program.end(SIGTERM), 0);

    const auto &post = server.requests()[0];
    EXPECT_EQ(post.line(), "POST /api/break HTTP/1.1");
    EXPECT_EQ(post.header("Authorization"), "Bearer secret");
    EXPECT_EQ(QJsonDocument::fromJson(post.body).object(),
              QJsonObject({{QStringLiteral("kind"), QStringLiteral("micro")},
                           {QStringLiteral("title"), QStringLiteral("Micro break")},
                           {QStringLiteral("seconds"), 2}}));
    EXPECT_EQ(server.requests()[1].line(), "DELETE /api/break HTTP/1.1");
    EXPECT_EQ(server.requests()[1].body, "");
    for (std::size_t i = 0; i < server.requests().size(); ++i) {
        const QByteArray method = server.requests()[i].line().split(' ')[0];
        EXPECT_EQ(method, i % 2 == 0 ? "POST" : "DELETE") << "exactly one of each a break";
    }
}

TEST_F(PhoneRelay, breaks_go_on_whatever_becomes_of_the_service) {
    const HttpServer silent([](const auto &, QTcpSocket &) {});
    const HttpServer broken([](const auto &, QTcpSocket &connection) { connection.abort(); });
    const QString down = QStringLiteral("http://127.0.0.1:1");
    for (const QString &service : {silent.url().toString(), broken.url().toString(), down}) {
        QFile::remove(breakTimes());
        startWith(service);
        // Were the program to wait for an answer, each break would be late by twenty seconds or never come.
        EXPECT_TRUE(waitUntil([&] { return breaksFollowEachOther(); })) << service.toStdString();
        EXPECT_EQ(program.end(SIGTERM), 0);
        EXPECT_GE(storedBreaks(), 1) << service.toStdString();
    }
}

TEST_F(PhoneRelay, an_address_that_is_none_stops_the_start_with_one_line) {
    QProcessEnvironment environment = program.environment();
    environment.insert(QStringLiteral("PAVONEL_PAIR_HOST"), QStringLiteral("http://["));
    const auto result = ChildProcess::run(QStringLiteral(PAVONEL_PROGRAM), {}, environment);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pavonel: PAVONEL_PAIR_HOST is not the address of a pairing service\n");
}

} // namespace pavonel::test
