#include "Platform/Linux/Fetch/FetchClient.h"
#include "support/HttpServer.h"
#include "support/answerOf.h"
#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <atomic>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using File = std::optional<QString>;

class FetchDownloadTest : public ::testing::Test {
protected:
    QTemporaryDir folder;
    std::unique_ptr<FetchClient> client = std::make_unique<FetchClient>(ProgramFiles::ofThisProgram());

    HttpDownload request(const QUrl &url) const {
        HttpDownload download;
        download.url = url;
        download.folder = folder.path();
        download.spaceToLeave = 0;
        return download;
    }

    /// Waits for the answer.
    File fetch(const HttpDownload &download) {
        return answerOf<File>([&](auto answer) { client->download(download, answer); });
    }
    File fetch(const QUrl &url) { return fetch(request(url)); }

    void expectNothing(const HttpDownload &download) {
        EXPECT_FALSE(fetch(download)) << download.url.toString().toStdString();
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }

    static QByteArray read(const File &path) {
        QFile file(path.value_or(QString()));
        return path && file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Writes zeros for as long as they are read, so many at once.
    static HttpServer::Answer pour(qint64 promised, std::atomic<qint64> &written) {
        return [=, &written](const auto &, QTcpSocket &connection) {
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(promised) +
                             "\r\n\r\n");
            const auto more = [&connection, &written, promised] {
                if (written < promised && connection.bytesToWrite() < 64 * 1024)
                    written += connection.write(QByteArray(256 * 1024, '\0'));
            };
            QObject::connect(&connection, &QTcpSocket::bytesWritten, &connection, more);
            more();
        };
    }
};

} // namespace

TEST_F(FetchDownloadTest, the_body_arrives_whole_in_a_file_of_its_own) {
    QByteArray body(5'000'000, 'x');
    for (qsizetype i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>(i * 31 + i / 253);
    const HttpServer server(HttpServer::respond(200, body));
    const File first = fetch(server.url("/Pavonel.dmg"));
    const File second = fetch(server.url("/Pavonel.dmg"));
    EXPECT_EQ(read(first), body);
    EXPECT_EQ(read(second), body);
    EXPECT_NE(first, second);
    EXPECT_EQ(QFileInfo(first.value_or(QString())).path(), folder.path());
    EXPECT_EQ(server.requests()[0].line(), "GET /Pavonel.dmg HTTP/1.1");
    EXPECT_EQ(QFile::permissions(first.value_or(QString())) & 0x77, 0) << "for the user's eyes only";
}

TEST_F(FetchDownloadTest, an_empty_body_is_an_empty_file) {
    const HttpServer server(HttpServer::respond(200));
    const File file = fetch(server.url());
    ASSERT_TRUE(file);
    EXPECT_EQ(QFileInfo(*file).size(), 0);
}

TEST_F(FetchDownloadTest, a_refusal_brings_its_page) {
    const HttpServer server(HttpServer::respond(404, "not here"));
    EXPECT_EQ(read(fetch(server.url())), "not here");
}

TEST_F(FetchDownloadTest, a_redirect_is_followed_and_its_own_body_left_behind) {
    const HttpServer server([](const HttpServer::Request &seen, QTcpSocket &connection) {
        if (seen.line().contains("/there"))
            HttpServer::respond(200, "arrived")(seen, connection);
        else
            HttpServer::respond(302, "a longer body than that", "Location: /there\r\n")(seen, connection);
    });
    EXPECT_EQ(read(fetch(server.url("/here"))), "arrived");
}

TEST_F(FetchDownloadTest, nothing_but_the_web_is_fetched) {
    expectNothing(request(QUrl(QStringLiteral("file:///etc/passwd"))));
    expectNothing(request(QUrl(QStringLiteral("data:,text"))));
    expectNothing(request(QUrl(QStringLiteral("qrc:/menubar.svg"))));
    expectNothing(request(QUrl(QStringLiteral("nonsense"))));
    const HttpServer toFile(HttpServer::respond(302, "", "Location: file:///etc/passwd\r\n"));
    expectNothing(request(toFile.url()));
    expectNothing(request(QUrl(QStringLiteral("http://127.0.0.1:1/"))));
}

TEST_F(FetchDownloadTest, a_certificate_that_nobody_trusts_brings_nothing) {
    const HttpServer server(HttpServer::respond(200, "image"), HttpServer::Transport::tls);
    expectNothing(request(server.url()));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(FetchDownloadTest, a_trusted_server_is_fetched_from_over_https) {
    const HttpServer server(HttpServer::respond(200, "image"), HttpServer::Transport::trustedTls);
    EXPECT_EQ(read(fetch(server.url())), "image");
}

TEST_F(FetchDownloadTest, no_redirect_leads_from_https_to_http) {
    const HttpServer plain(HttpServer::respond(200, "image"));
    const HttpServer server(
        HttpServer::respond(302, "", "Location: " + plain.url("/Pavonel.dmg").toEncoded() + "\r\n"),
        HttpServer::Transport::trustedTls);
    expectNothing(request(server.url()));
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_TRUE(plain.requests().empty());
}

TEST_F(FetchDownloadTest, a_network_that_goes_in_the_middle_leaves_no_file) {
    const HttpServer server([](const auto &, QTcpSocket &connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n" + QByteArray(500'000, 'x'));
        connection.disconnectFromHost();
    });
    expectNothing(request(server.url()));
}

TEST_F(FetchDownloadTest, a_download_that_stalls_ends) {
    const HttpServer server([](const auto &, QTcpSocket &connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nbeginning");
    });
    HttpDownload download = request(server.url());
    download.timeout = 0.5;
    expectNothing(download);
}

TEST_F(FetchDownloadTest, a_download_that_trickles_without_end_ends) {
    const HttpServer server([](const auto &, QTcpSocket &connection) {
        connection.write("HTTP/1.1 200 OK\r\n\r\n");
        auto *trickle = new QTimer(&connection);
        QObject::connect(trickle, &QTimer::timeout, &connection, [&connection] { connection.write("x"); });
        trickle->start(20);
    });
    HttpDownload download = request(server.url());
    download.longest = 1;
    expectNothing(download);
}

TEST_F(FetchDownloadTest, a_file_that_grows_too_large_is_given_up) {
    constexpr qint64 flood = 100 * 1024 * 1024;
    std::atomic<qint64> written = 0;
    const HttpServer server(pour(flood, written));
    HttpDownload download = request(server.url());
    download.largest = 3'000'000;
    expectNothing(download);
    EXPECT_LT(written, flood / 2) << "it went on reading";
}

TEST_F(FetchDownloadTest, the_disk_is_not_filled) {
    constexpr qint64 flood = 100 * 1024 * 1024;
    constexpr qint64 room = 20 * 1024 * 1024;
    std::atomic<qint64> written = 0;
    const HttpServer server(pour(flood, written));
    HttpDownload download = request(server.url());
    download.spaceToLeave = QStorageInfo(folder.path()).bytesAvailable() - room;
    expectNothing(download);
    EXPECT_LT(written, flood) << "it went on reading";
}

TEST_F(FetchDownloadTest, without_its_folder_there_is_nothing) {
    const HttpServer server(HttpServer::respond(200, "image"));
    HttpDownload download = request(server.url());
    download.folder += QStringLiteral("/missing");
    expectNothing(download);
}

TEST_F(FetchDownloadTest, whoever_takes_his_time_with_a_file_holds_up_no_request) {
    const HttpServer server(HttpServer::respond(200, "image"));
    std::atomic<bool> mayEnd = false;
    std::atomic<bool> hasFile = false;
    client->download(request(server.url()), [&](const File &) {
        hasFile = true;
        while (!mayEnd)
            QThread::msleep(5);
    });
    EXPECT_TRUE(waitUntil([&] { return hasFile.load(); }));
    std::atomic<bool> answered = false;
    HttpRequest other;
    other.method = "GET";
    other.url = server.url();
    client->send(other, [&](const auto &) { answered = true; });
    EXPECT_TRUE(waitUntil([&] { return answered.load(); }));
    mayEnd = true;
    client.reset();
}

TEST_F(FetchDownloadTest, nothing_is_answered_or_left_once_the_client_is_gone) {
    const HttpServer server([](const auto &, QTcpSocket &connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nbeginning");
    });
    std::atomic<bool> answered = false;
    client->download(request(server.url()), [&](const File &) { answered = true; });
    ASSERT_TRUE(waitUntil([&] { return !server.requests().empty(); }));
    client.reset();
    EXPECT_FALSE(answered);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

} // namespace pavonel::test
