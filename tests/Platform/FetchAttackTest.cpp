#include "Platform/Linux/Fetch/FetchClient.h"
#include "support/HostileAnswers.h"
#include "support/answerOf.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Response = std::optional<HttpResponse>;

/// A server that means harm, and how many of the connections to it are gone.
struct HostileServer {
    explicit HostileServer(HttpServer::Answer harm)
        : server([this, harm](const auto &request, auto &connection) {
              QObject::connect(&connection, &QTcpSocket::disconnected, [this] { ++gone; });
              harm(request, connection);
          }) {}

    int gone = 0;
    HttpServer server;
};

class FetchAttack : public testing::Test {
protected:
    FetchClient client{ProgramFiles::ofThisProgram()};

    Response get(const HttpServer &server, Seconds timeout) {
        HttpRequest request;
        request.method = "GET";
        request.url = server.url();
        request.timeout = timeout;
        return answerOf<Response>([&](auto answer) { client.send(request, answer); });
    }

    void expectGivenUp(HostileServer &hostile, Seconds timeout) {
        EXPECT_FALSE(get(hostile.server, timeout));
        EXPECT_TRUE(waitUntil([&] { return hostile.gone > 0; })) << "the connection stays";
    }
};

class FetchFlood : public FetchAttack, public testing::WithParamInterface<Flood> {};

} // namespace

TEST_P(FetchFlood, without_end_is_given_up_before_it_costs_anything) {
    qint64 written = 0;
    HostileServer hostile(pour(GetParam().beginning, GetParam().piece, written));
    constexpr Seconds muchTime = 100;
    expectGivenUp(hostile, muchTime);
    EXPECT_LT(written, 20'000'000) << "it went on reading";
}

INSTANTIATE_TEST_SUITE_P(Of, FetchFlood, testing::ValuesIn(floods),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_F(FetchAttack, what_costs_only_time_ends_with_the_time) {
    qint64 written = 0;
    constexpr std::chrono::milliseconds often{50};
    const HttpServer::Answer delays[] = {
        trickle("HTTP/1.1 200 OK\r\nX-Header: ", "x", often),
        trickle("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n", "x", often),
        trickle("", "HTTP/1.1 100 Continue\r\n\r\n", often),
        pour("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1;", "extension ", written),
    };
    for (const auto &delay : delays) {
        HostileServer hostile(delay);
        expectGivenUp(hostile, 1);
    }
}

TEST_F(FetchAttack, other_requests_are_served_meanwhile) {
    qint64 written = 0;
    const HttpServer hostile(
        pour("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1;", "extension ", written));
    HttpRequest request;
    request.method = "GET";
    request.url = hostile.url();
    request.timeout = 100;
    for (int i = 0; i < 10; ++i)
        client.send(request, [](const Response &) {});
    ASSERT_TRUE(waitUntil([&] { return hostile.requests().size() == 10; }));
    const HttpServer honest(HttpServer::respond(200, "{}"));
    EXPECT_TRUE(get(honest, 100));
}

TEST_F(FetchAttack, a_header_with_a_line_break_is_not_sent) {
    const HttpServer server(HttpServer::respond(200));
    for (const char *token : {"a\r\nX-Other: b", "a\nb", "a\rb", "a\tb", "a\x7f", "a\x1b[2J"}) {
        HttpRequest request;
        request.method = "GET";
        request.url = server.url();
        request.headers = {{"Authorization", QByteArray("Bearer ") + token}};
        EXPECT_FALSE(answerOf<Response>([&](auto answer) { client.send(request, answer); })) << token;
    }
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(FetchAttack, what_is_packed_is_not_unpacked) { // or a few bytes could become many
    const HttpServer server(HttpServer::respond(200, "packed", "Content-Encoding: gzip\r\n"));
    const Response response = get(server, 100);
    ASSERT_TRUE(response);
    EXPECT_EQ(response->data, "packed");
    EXPECT_EQ(server.requests()[0].header("Accept-Encoding"), "");
}

TEST_F(FetchAttack, without_the_tool_there_is_no_response) {
    FetchClient toolless{ProgramFiles(QStringLiteral("/nowhere/pavonel"))};
    HttpRequest request;
    request.method = "GET";
    request.url = QUrl(QStringLiteral("http://127.0.0.1:1/"));
    EXPECT_FALSE(answerOf<Response>([&](auto answer) { toolless.send(request, answer); }));
}

} // namespace pavonel::test
