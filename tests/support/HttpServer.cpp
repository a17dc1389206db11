#include "support/HttpServer.h"

#include "support/ChildProcess.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Which is what programs that fetch from the web go by.
void trust(const QString &certificate) {
    static const QTemporaryDir folder;
    const QString kept = folder.filePath(QStringLiteral("trusted.pem"));
    QFile::remove(kept);
    EXPECT_TRUE(QFile::copy(certificate, kept));
    qputenv("SSL_CERT_FILE", QFile::encodeName(kept));
}

std::unique_ptr<QTcpServer> listener(HttpServer::Transport transport) {
    if (transport == HttpServer::Transport::plain)
        return std::make_unique<QTcpServer>();
    const QTemporaryDir folder;
    const QString key = folder.filePath(QStringLiteral("key.pem"));
    const QString certificate = folder.filePath(QStringLiteral("certificate.pem"));
    const auto made =
        ChildProcess::run(QStringLiteral("openssl"),
                          {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                           QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-days"),
                           QStringLiteral("2"), QStringLiteral("-subj"), QStringLiteral("/CN=localhost"),
                           QStringLiteral("-addext"), QStringLiteral("subjectAltName=IP:127.0.0.1"),
                           QStringLiteral("-keyout"), key, QStringLiteral("-out"), certificate});
    EXPECT_EQ(made.status, 0) << made.errors.toStdString();
    QFile keyFile(key);
    EXPECT_TRUE(keyFile.open(QIODevice::ReadOnly));
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
    configuration.setLocalCertificateChain(QSslCertificate::fromPath(certificate));
    if (transport == HttpServer::Transport::trustedTls)
        trust(certificate);
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    return server;
}

} // namespace

QByteArray HttpServer::Request::header(const QByteArray &name) const {
    for (const QByteArray &line : head.split('\n')) {
        const auto colon = line.indexOf(':');
        if (line.left(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

HttpServer::HttpServer(Answer answer, Transport transport)
    : answer_(std::move(answer)), transport_(transport), server_(listener(transport)) {
    EXPECT_TRUE(server_->listen(QHostAddress::LocalHost));
    QObject::connect(server_.get(), &QTcpServer::pendingConnectionAvailable, server_.get(),
                     [this] { accept(); });
}

HttpServer::~HttpServer() = default;

QUrl HttpServer::url(const char *path) const {
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3")
                    .arg(transport_ == Transport::plain ? QStringLiteral("http") : QStringLiteral("https"))
                    .arg(server_->serverPort())
                    .arg(QString::fromUtf8(path)));
}

HttpServer::Answer HttpServer::respond(int status, const QByteArray &body, const QByteArray &moreHeaders) {
    return [=](const Request &, QTcpSocket &connection) {
        connection.write("HTTP/1.1 " + QByteArray::number(status) + " Whatever\r\nContent-Length: " +
                         QByteArray::number(body.size()) + "\r\n" + moreHeaders + "\r\n" + body);
    };
}

void HttpServer::accept() {
    while (QTcpSocket *connection = server_->nextPendingConnection()) {
        QObject::connect(connection, &QTcpSocket::readyRead, server_.get(),
                         [this, connection] { read(*connection); });
        QObject::connect(connection, &QTcpSocket::disconnected, connection, &QObject::deleteLater);
        read(*connection);
    }
}

void HttpServer::read(QTcpSocket &connection) {
    while (connection.isOpen()) {
        const QByteArray bytes = connection.peek(connection.bytesAvailable());
        const auto headEnd = bytes.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        Request request{bytes.left(headEnd), {}};
        const auto length = request.header("Content-Length").toLongLong();
        const auto end = headEnd + 4 + length;
        if (bytes.size() < end)
            return;
        request.body = bytes.mid(headEnd + 4, length);
        connection.read(end);
        requests_.push_back(request);
        answer_(request, connection);
    }
}

} // namespace pavonel::test
