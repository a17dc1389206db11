#include "EndToEnd/HeadlessProgram.h"
#include "support/HostileAnswers.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QJsonDocument>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr std::chrono::seconds fiveSeconds{5};

/// The built program, paired and with a break every few seconds, before servers that mean harm.
class NetworkAttack : public testing::Test {
protected:
    HeadlessProgram program;
    qint64 written = 0;
    int gone = 0; ///< Connections that were ended.
    HttpServer::Answer answer;
    HttpServer server{[this](const auto &request, auto &connection) {
        QObject::connect(&connection, &QTcpSocket::disconnected, [this] { ++gone; });
        answer(request, connection);
    }};

    void startPaired() {
        writeFile(program.storePath(),
                  R"({"phonePairToken": "secret", "didOnboard": true, "autoUpdate": false,
                      "microInterval": 2, "microDuration": 2, "preNotifySeconds": 0, "longEnabled": false,
                      "naturalBreakEnabled": false, "soundEnabled": false})");
        program.environment().insert(QStringLiteral("PAVONEL_PAIR_HOST"), server.url("/api").toString());
        // The sanitizer keeps what was freed, and would make all memory look lost.
        program.environment().insert(QStringLiteral("ASAN_OPTIONS"),
                                     qEnvironmentVariable("ASAN_OPTIONS") +
                                         QStringLiteral(":quarantine_size_mb=1"));
        program.start();
    }

    /// Without what Qt says of a platform that has no screen.
    QByteArray complaints() { return program.errors().replace("This plugin does not support raise()\n", ""); }

    /// What it says to --update-now.
    ChildProcess::Result updateNow() {
        program.environment().insert(QStringLiteral("PAVONEL_UPDATE_FEED"),
                                     server.url("/updates.json").toString());
        ChildProcess child(QStringLiteral(PAVONEL_PROGRAM), {QStringLiteral("--update-now")},
                           program.environment());
        EXPECT_TRUE(waitUntil([&] { return !child.isRunning(); }, 2 * generousTimeout));
        QProcess &process = child.process();
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    void expectFeedUnreached() {
        const auto update = updateNow();
        EXPECT_EQ(update.status, 1);
        EXPECT_EQ(update.output.split('\n').value(1), "failed: Could not reach the update server.");
        EXPECT_EQ(update.errors, "");
        EXPECT_TRUE(waitUntil([&] { return gone > 0; })) << "the connection stays";
    }
};

class NetworkFlood : public NetworkAttack, public testing::WithParamInterface<Flood> {};

} // namespace

TEST_P(NetworkFlood, of_the_feed_is_told_as_an_unreached_server) {
    answer = pour(GetParam().beginning, GetParam().piece, written);
    expectFeedUnreached();
}

INSTANTIATE_TEST_SUITE_P(With, NetworkFlood, testing::ValuesIn(floods),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_F(NetworkAttack, a_feed_of_one_byte_every_five_seconds_is_an_unreached_server) {
    answer = trickle("HTTP/1.1 200 OK\r\nX-Header: ", "x", fiveSeconds);
    expectFeedUnreached();
}

TEST_F(NetworkAttack, a_pairing_service_that_floods_costs_no_memory_and_is_heard_again_when_it_is_well) {
    for (const Flood &flood : {floods[0], floods[3]}) {
        gone = 0;
        answer = pour(flood.beginning, flood.piece, written);
        startPaired();
        ASSERT_TRUE(waitUntil([&] { return gone >= 1; })) << "a flood goes on";
        const qint64 before = program.residentMemory();
        ASSERT_TRUE(waitUntil([&] { return gone >= 6; })) << "a flood goes on, or relays wait for it";
        EXPECT_LT(program.residentMemory(), before + 60'000);
        answer = HttpServer::respond(200, "{}", "Connection: close\r\n");
        const auto told = server.requests().size();
        EXPECT_TRUE(waitUntil([&] { return server.requests().size() >= told + 2; }));
        EXPECT_EQ(program.end(SIGTERM), 0);
        EXPECT_EQ(complaints(), "");
    }
}

TEST_F(NetworkAttack, relays_to_a_service_of_one_byte_every_five_seconds_end_and_hold_up_no_other) {
    answer = trickle("HTTP/1.1 200 OK\r\nX-Header: ", "x", fiveSeconds);
    startPaired();
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() >= 8; })) << "relays wait for each other";
    EXPECT_TRUE(waitUntil([&] { return gone >= 2; })) << "they are never given up";
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_EQ(complaints(), "") << "of what was under way at the end";
}

} // namespace pavonel::test
