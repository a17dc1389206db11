#include "EndToEnd/HeadlessProgram.h"
#include "support/HttpServer.h"
#include "support/waitUntil.h"

#include <QTcpSocket>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// The built program, which is no bundle, asked to update as over a remote shell: no display, no message bus.
struct UpdateNowTest : testing::Test {
    HeadlessProgram program;
    std::unique_ptr<ChildProcess> child;

    UpdateNowTest() { program.environment().remove(QStringLiteral("QT_QPA_PLATFORM")); }

    void startWith(const QString &feed, const QStringList &arguments = {QStringLiteral("--update-now")}) {
        program.environment().insert(QStringLiteral("PAVONEL_UPDATE_FEED"), feed);
        child =
            std::make_unique<ChildProcess>(QStringLiteral(PAVONEL_PROGRAM), arguments, program.environment());
    }
    void startWith(const HttpServer &server) { startWith(server.url("/updates.json").toString()); }

    void expectEnd(int status, const QByteArray &output, const QByteArray &errors = {}) {
        ASSERT_TRUE(waitUntil([this] { return !child->isRunning(); })) << "it does not end";
        EXPECT_EQ(child->process().exitCode(), status);
        EXPECT_EQ(child->process().readAllStandardOutput(), output);
        EXPECT_EQ(child->process().readAllStandardError(), errors);
    }

    static HttpServer::Answer offer(const QByteArray &version) {
        return HttpServer::respond(200, R"({"version":")" + version +
                                            R"(","url":"http://127.0.0.1:1/p.dmg","sha256":"","notes":""})");
    }

    static constexpr char current[] = "current version: " PAVONEL_VERSION "\n";
};

} // namespace

TEST_F(UpdateNowTest, the_newest_version_is_up_to_date) {
    const HttpServer server(offer(PAVONEL_VERSION));
    startWith(server);
    expectEnd(0, QByteArray(current) + "up to date\n");
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(server.requests()[0].line(), "GET /updates.json HTTP/1.1");
    EXPECT_TRUE(program.stored().contains(u"lastUpdateCheck"));
}

TEST_F(UpdateNowTest, a_feed_that_nobody_understands_fails) {
    const HttpServer server(HttpServer::respond(200, "<html></html>"));
    startWith(server);
    expectEnd(1, QByteArray(current) + "failed: Could not reach the update server.\n");
}

TEST_F(UpdateNowTest, no_network_fails_and_counts_as_a_check) {
    startWith(QStringLiteral("http://127.0.0.1:1/updates.json"));
    expectEnd(1, QByteArray(current) + "failed: Could not reach the update server.\n");
    EXPECT_TRUE(program.stored().contains(u"lastUpdateCheck"));
}

TEST_F(UpdateNowTest, a_copy_that_is_no_bundle_is_not_replaced) {
    const HttpServer server(offer("999"));
    startWith(server);
    expectEnd(1, QByteArray(current) + "available: 999 — installing\n"
                                       "failed: This copy of Pavonel was not installed from a disk image. "
                                       "Whoever built or installed it updates it.\n");
}

TEST_F(UpdateNowTest, each_line_is_out_at_once) {
    const HttpServer server([](const auto &, QTcpSocket &) {});
    startWith(server);
    EXPECT_TRUE(waitUntil([&] { return child->process().canReadLine(); }));
    EXPECT_EQ(child->process().readAllStandardOutput(), QByteArray(current));
    EXPECT_TRUE(waitUntil([&] { return !server.requests().empty(); }));
    EXPECT_TRUE(child->isRunning());
}

TEST_F(UpdateNowTest, an_address_that_is_none_stops_it_and_a_start_with_one_line) {
    const QByteArray complaint = "pavonel: PAVONEL_UPDATE_FEED is not the address of an update feed\n";
    for (const char *address : {"http://[", ""}) {
        startWith(QString::fromUtf8(address));
        expectEnd(1, "", complaint);
        startWith(QString::fromUtf8(address), {});
        expectEnd(1, "", complaint);
    }
}

} // namespace pavonel::test
