#include "Platform/Linux/Fetch/FetchClient.h"

#include "Core/Phone.h"
#include "Platform/Qt/QtMainLoop.h"
#include "support/FakePlatform.h"
#include "support/HostileAnswers.h"
#include "support/answerOf.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QTcpSocket>

#include <atomic>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Response = std::optional<HttpResponse>;

class FetchClientTest : public ::testing::Test {
protected:
    std::unique_ptr<FetchClient> client = std::make_unique<FetchClient>(ProgramFiles::ofThisProgram());

    HttpRequest request(const char *method, const QUrl &url) {
        HttpRequest made;
        made.method = method;
        made.url = url;
        return made;
    }

    /// Sends and waits for the answer.
    Response send(const HttpRequest &request) {
        return answerOf<Response>([&](auto answer) { client->send(request, answer); });
    }
    Response get(const HttpServer &server) { return send(request("GET", server.url("/pair/status"))); }
};

} // namespace

TEST_F(FetchClientTest, a_request_reaches_the_server_to_the_letter) {
    const HttpServer server(HttpServer::respond(200, "hello"));
    HttpRequest post = request("POST", server.url("/base/break"));
    post.headers = {{"Authorization", "Bearer secret"}, {"Content-Type", "application/json"}};
    post.body = R"({"seconds":20})";
    const Response response = send(post);
    ASSERT_TRUE(response);
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->data, "hello");
    ASSERT_EQ(server.requests().size(), 1U);
    const auto &seen = server.requests()[0];
    EXPECT_EQ(seen.line(), "POST /base/break HTTP/1.1");
    EXPECT_EQ(seen.header("Authorization"), "Bearer secret");
    EXPECT_EQ(seen.header("Content-Type"), "application/json");
    EXPECT_EQ(seen.body, R"({"seconds":20})");
}

TEST_F(FetchClientTest, every_method_goes_out_under_its_name_and_without_a_body_that_was_not_given) {
    const HttpServer server(HttpServer::respond(204));
    for (const char *method : {"GET", "POST", "DELETE"})
        EXPECT_TRUE(send(request(method, server.url("/pair"))));
    ASSERT_EQ(server.requests().size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(server.requests()[i].line().split(' ')[0],
                  QByteArray(std::array{"GET", "POST", "DELETE"}[i]));
        EXPECT_EQ(server.requests()[i].body, "");
        EXPECT_EQ(server.requests()[i].header("Content-Type"), "");
        EXPECT_EQ(server.requests()[i].header("Authorization"), "");
    }
}

TEST_F(FetchClientTest, a_refusal_is_a_response_with_its_data) {
    for (const int status : {300, 304, 400, 401, 403, 404, 407, 410, 418, 429, 500, 503, 599}) {
        const HttpServer server(HttpServer::respond(status, status == 304 ? "" : "why"));
        const Response response = get(server);
        ASSERT_TRUE(response) << status;
        EXPECT_EQ(response->status, status);
    }
}

TEST_F(FetchClientTest, a_reply_that_is_cut_off_is_none) {
    for (const int status : {200, 404}) {
        const HttpServer server([status](const auto &, QTcpSocket &connection) {
            connection.write("HTTP/1.1 " + QByteArray::number(status) +
                             " OK\r\nContent-Length: 100\r\n\r\n{\"pai");
            connection.disconnectFromHost();
        });
        EXPECT_FALSE(get(server)) << status;
    }
}

TEST_F(FetchClientTest, a_server_that_speaks_something_else_gives_no_response) {
    const HttpServer server([](const auto &, QTcpSocket &connection) {
        connection.write("220 mail.example ready\r\n");
        connection.disconnectFromHost();
    });
    EXPECT_FALSE(get(server));
}

TEST_F(FetchClientTest, a_server_that_never_answers_is_given_up_after_the_time_out) {
    const HttpServer server([](const auto &, QTcpSocket &) {});
    HttpRequest impatient = request("GET", server.url());
    impatient.timeout = 0.3;
    EXPECT_FALSE(send(impatient));
}

TEST_F(FetchClientTest, no_server_gives_no_response) {
    EXPECT_FALSE(send(request("GET", QUrl(QStringLiteral("http://127.0.0.1:1/")))));
    EXPECT_FALSE(send(request("GET", QUrl(QStringLiteral("nonsense")))));
}

TEST_F(FetchClientTest, a_flood_of_data_is_not_taken_in) {
    std::atomic<qint64> written = 0;
    const HttpServer server([&](const auto &, QTcpSocket &connection) {
        constexpr qint64 flood = 100 * 1024 * 1024;
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(flood) + "\r\n\r\n");
        const auto pour = [&connection, &written] {
            if (written < flood && connection.bytesToWrite() < 64 * 1024)
                written += connection.write(QByteArray(256 * 1024, ' '));
        };
        QObject::connect(&connection, &QTcpSocket::bytesWritten, &connection, pour);
        pour();
    });
    EXPECT_FALSE(get(server));
    EXPECT_LT(written, 50 * 1024 * 1024) << "it went on reading";
}

TEST_F(FetchClientTest, a_certificate_that_nobody_trusts_ends_it_before_a_byte_is_sent) {
    const HttpServer server(HttpServer::respond(200, "{}"), HttpServer::Transport::tls);
    HttpRequest secret = request("GET", server.url("/pair/status"));
    secret.headers = {{"Authorization", "Bearer secret"}};
    EXPECT_FALSE(send(secret));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(FetchClientTest, redirects_are_followed_with_the_method_that_their_status_means) {
    const struct {
        int status;
        const char *method;
        const char *methodThere;
        const char *bodyThere;
    } table[] = {{301, "POST", "GET", ""},      {302, "POST", "GET", ""},
                 {303, "POST", "GET", ""},      {307, "POST", "POST", "body"},
                 {308, "POST", "POST", "body"}, {302, "DELETE", "DELETE", "body"},
                 {303, "DELETE", "GET", ""}};
    for (const auto &row : table) {
        const HttpServer server([&](const HttpServer::Request &seen, QTcpSocket &connection) {
            if (seen.line().contains("/there"))
                HttpServer::respond(200, "arrived")(seen, connection);
            else
                HttpServer::respond(row.status, "", "Location: /there\r\n")(seen, connection);
        });
        HttpRequest first = request(row.method, server.url("/here"));
        first.headers = {{"Authorization", "Bearer secret"}};
        first.body = "body";
        const Response response = send(first);
        ASSERT_TRUE(response) << row.status;
        EXPECT_EQ(response->data, "arrived");
        ASSERT_EQ(server.requests().size(), 2U);
        EXPECT_EQ(server.requests()[1].line(), QByteArray(row.methodThere) + " /there HTTP/1.1")
            << row.status;
        EXPECT_EQ(server.requests()[1].body, row.bodyThere) << row.status;
        EXPECT_EQ(server.requests()[1].header("Authorization"), "Bearer secret") << "the same server";
    }
}

TEST_F(FetchClientTest, credentials_do_not_follow_to_another_server) {
    const HttpServer other(HttpServer::respond(200, "arrived"));
    const HttpServer server(
        HttpServer::respond(302, "", "Location: " + other.url("/x").toEncoded() + "\r\n"));
    HttpRequest secret = request("GET", server.url());
    secret.headers = {{"Authorization", "Bearer secret"}, {"X-Other", "stays"}};
    EXPECT_TRUE(send(secret));
    ASSERT_EQ(other.requests().size(), 1U);
    EXPECT_EQ(other.requests()[0].header("Authorization"), "");
    EXPECT_EQ(other.requests()[0].header("X-Other"), "stays");
}

TEST_F(FetchClientTest, credentials_are_not_among_what_others_see_of_a_process) {
    const HttpServer silent([](const auto &, QTcpSocket &) {});
    HttpRequest secret = request("GET", silent.url());
    secret.headers = {{"Authorization", "Bearer s3cret"}};
    client->send(secret, [](const Response &) {});
    ASSERT_TRUE(waitUntil([&] { return !silent.requests().empty(); }));
    const QString tool = ProgramFiles::ofThisProgram().tool(QStringLiteral("fetch"));
    int seen = 0;
    for (const QString &process : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const QString folder = QStringLiteral("/proc/%1/").arg(process);
        if (QFile::symLinkTarget(folder + QStringLiteral("exe")) != tool)
            continue;
        ++seen;
        for (const char *file : {"cmdline", "environ"})
            EXPECT_FALSE(readFile(folder + QString::fromLatin1(file)).contains("s3cret")) << file;
    }
    EXPECT_GE(seen, 1);
}

TEST_F(FetchClientTest, redirects_in_a_circle_or_to_elsewhere_end) {
    const HttpServer circle(HttpServer::respond(302, "", "Location: /again\r\n"));
    EXPECT_FALSE(get(circle));
    EXPECT_LT(circle.requests().size(), 30U);
    const HttpServer file(HttpServer::respond(302, "", "Location: file:///etc/passwd\r\n"));
    EXPECT_FALSE(get(file));
}

TEST_F(FetchClientTest, no_redirect_leads_from_https_to_http) {
    const HttpServer plain(HttpServer::respond(200, "{}"));
    const HttpServer server(
        HttpServer::respond(302, "", "Location: " + plain.url("/pair").toEncoded() + "\r\n"),
        HttpServer::Transport::trustedTls);
    EXPECT_FALSE(get(server));
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_TRUE(plain.requests().empty());
}

TEST_F(FetchClientTest, nothing_is_answered_once_the_client_is_gone) {
    const HttpServer server([](const auto &, QTcpSocket &) {});
    std::atomic<bool> answered = false;
    client->send(request("GET", server.url()), [&](const Response &) { answered = true; });
    ASSERT_TRUE(waitUntil([&] { return !server.requests().empty(); }));
    client.reset();
    EXPECT_FALSE(answered);
}

namespace {

/// A phone link over the real client and the real main loop.
struct RealPhone {
    explicit RealPhone(const QUrl &base) : phone(http, loop, defaults, base) {}

    bool becomes(const Phone::State &state) {
        return waitUntil([&] { return phone.state.get() == state; });
    }

    QtMainLoop loop;
    FakeDefaults defaults;
    FetchClient http{ProgramFiles::ofThisProgram()};
    Phone phone;
};

} // namespace

TEST(PhoneOverHttp, pairs_with_a_phone_that_enters_the_code) {
    int polls = 0;
    const HttpServer server([&](const HttpServer::Request &seen, QTcpSocket &connection) {
        const bool start = seen.line().startsWith("POST /api/pair/start ");
        polls += start ? 0 : 1;
        HttpServer::respond(200, start       ? R"({"code":"314159","macToken":"tok"})"
                                 : polls > 1 ? R"({"paired":true})"
                                             : R"({"paired":false})")(seen, connection);
    });
    RealPhone real(server.url("/api/"));
    real.phone.startPairing();
    EXPECT_TRUE(real.becomes(Phone::Waiting{QStringLiteral("314159")}));
    EXPECT_TRUE(real.becomes(Phone::Paired{}));
    EXPECT_EQ(server.requests().back().line(), "GET /api/pair/status HTTP/1.1");
    EXPECT_EQ(server.requests().back().header("Authorization"), "Bearer tok");
}

TEST(PhoneOverHttp, each_reply_to_the_code_request_has_its_sentence) {
    const auto failed = [](const char *text) { return Phone::State(Phone::Failed{QString::fromUtf8(text)}); };
    const struct {
        HttpServer::Answer answer;
        Phone::State state;
    } table[] = {
        {HttpServer::respond(200, "[1]"), failed("The server sent something unexpected.")},
        {HttpServer::respond(200, ""), failed("The server sent something unexpected.")},
        {HttpServer::respond(200, "garbage"), failed("The server sent something unexpected.")},
        {HttpServer::respond(200, "{\"code\":\"\xff\xfe\",\"macToken\":\"t\"}"),
         failed("The server sent something unexpected.")},
        {HttpServer::respond(403, "{}"), failed("The pairing service said no (403).")},
        {HttpServer::respond(404), failed("The pairing service said no (404).")},
        {HttpServer::respond(500), failed("The pairing service said no (500).")},
        {HttpServer::respond(304), failed("The pairing service said no (304).")},
        {[](const auto &, QTcpSocket &connection) { connection.abort(); },
         failed("Could not reach the pairing service.")},
    };
    for (const auto &row : table) {
        const HttpServer server(row.answer);
        RealPhone real(server.url());
        real.phone.startPairing();
        EXPECT_TRUE(real.becomes(row.state)) << std::get<Phone::Failed>(row.state).message.toStdString();
    }
}

TEST(PhoneOverHttp, a_service_that_floods_is_one_that_is_not_reached) {
    qint64 written = 0;
    for (const Flood &flood : floods) {
        const HttpServer server(pour(flood.beginning, flood.piece, written));
        RealPhone real(server.url());
        real.phone.startPairing();
        EXPECT_TRUE(real.becomes(Phone::Failed{QStringLiteral("Could not reach the pairing service.")}))
            << flood.name;
    }
}

TEST(PhoneOverHttp, slow_polls_overlap_and_late_ones_change_nothing) {
    std::vector<QTcpSocket *> polls;
    const HttpServer server([&](const HttpServer::Request &seen, QTcpSocket &connection) {
        if (seen.line().contains("/pair/start"))
            HttpServer::respond(200, R"({"code":"1","macToken":"tok"})")(seen, connection);
        else
            polls.push_back(&connection);
    });
    RealPhone real(server.url("/api"));
    real.phone.startPairing();
    ASSERT_TRUE(waitUntil([&] { return polls.size() >= 3; })) << "a poll waits for the one before";
    HttpServer::respond(200, R"({"paired":true})")({}, *polls[1]);
    EXPECT_TRUE(real.becomes(Phone::Paired{}));
    HttpServer::respond(200, R"({"paired":false})")({}, *polls[0]);
    HttpServer::respond(500)({}, *polls[2]);
    real.phone.breakEnded();
    EXPECT_TRUE(waitUntil([&] { return server.requests().back().line().startsWith("DELETE /api/break "); }));
    EXPECT_EQ(real.phone.state.get(), Phone::State(Phone::Paired{}));
}

TEST(PhoneOverHttp, a_code_that_comes_late_gives_way_to_that_of_the_newer_pairing) {
    QTcpSocket *first = nullptr;
    const HttpServer server([&](const HttpServer::Request &seen, QTcpSocket &connection) {
        if (!first)
            first = &connection;
        else if (seen.line().contains("/pair/start"))
            HttpServer::respond(200, R"({"code":"222222","macToken":"new"})")(seen, connection);
        else
            HttpServer::respond(200, R"({"paired":false})")(seen, connection);
    });
    RealPhone real(server.url());
    real.phone.startPairing();
    ASSERT_TRUE(waitUntil([&] { return first != nullptr; }));
    real.phone.startPairing();
    EXPECT_TRUE(real.becomes(Phone::Waiting{QStringLiteral("222222")}));
    HttpServer::respond(200, R"({"code":"111111","macToken":"old"})")({}, *first);
    const auto before = server.requests().size();
    EXPECT_TRUE(waitUntil([&] { return server.requests().size() >= before + 2; }));
    EXPECT_EQ(real.phone.state.get(), Phone::State(Phone::Waiting{QStringLiteral("222222")}));
    EXPECT_EQ(server.requests().back().header("Authorization"), "Bearer new");
}

TEST(PhoneOverHttp, a_code_that_comes_after_unpairing_is_dropped) {
    QTcpSocket *start = nullptr;
    const HttpServer server([&](const HttpServer::Request &seen, QTcpSocket &connection) {
        if (seen.line().contains("/pair/start"))
            start = &connection;
        else
            HttpServer::respond(200)(seen, connection);
    });
    RealPhone real(server.url());
    real.phone.startPairing();
    ASSERT_TRUE(waitUntil([&] { return start != nullptr; }));
    real.phone.unpair();
    HttpServer::respond(200, R"({"code":"111111","macToken":"old"})")({}, *start);
    real.phone.unpair(); // a second exchange, after which the first reply has been dealt with
    EXPECT_TRUE(waitUntil([&] { return server.requests().size() >= 3; }));
    EXPECT_EQ(real.phone.state.get(), Phone::State(Phone::Unpaired{}));
    EXPECT_FALSE(real.defaults.value(Phone::tokenKey));
}

TEST(PhoneOverHttp, an_untrusted_certificate_is_nobody_and_gets_no_token) {
    const HttpServer server(HttpServer::respond(200, R"({"code":"1","macToken":"t"})"),
                            HttpServer::Transport::tls);
    RealPhone real(server.url());
    real.defaults.set(Phone::tokenKey, QStringLiteral("secret"));
    real.phone.startPairing();
    EXPECT_TRUE(real.becomes(Phone::Failed{QStringLiteral("Could not reach the pairing service.")}));
    EXPECT_TRUE(server.requests().empty());
}

} // namespace pavonel::test
