#pragma once

#include <QByteArray>
#include <QTcpServer>
#include <QUrl>

#include <functional>
#include <vector>

class QTcpSocket;

namespace pavonel::test {

/// A local HTTP server that records every byte of every request and answers with bytes of the test's choice.
/// It lives on the test's event loop.
class HttpServer {
public:
    struct Request {
        QByteArray head; ///< Up to and without the empty line.
        QByteArray body;

        QByteArray line() const { return head.left(head.indexOf("\r\n")); }
        /// Empty when there is none. Names are compared without regard to case.
        QByteArray header(const QByteArray &name) const;
    };

    /// What to do with a connection once it has brought a whole request.
    using Answer = std::function<void(const Request &request, QTcpSocket &connection)>;

    enum class Transport {
        plain,
        tls,       ///< Under a certificate that nobody trusts.
        trustedTls ///< Under one that whatever this process starts trusts from then on.
    };

    /// On a free port of the loopback address.
    explicit HttpServer(Answer answer, Transport transport = Transport::plain);
    ~HttpServer();

    QUrl url(const char *path = "") const;
    const std::vector<Request> &requests() const { return requests_; }

    /// A whole response with these bytes as its body.
    static Answer respond(int status, const QByteArray &body = {}, const QByteArray &moreHeaders = {});

private:
    void accept();
    void read(QTcpSocket &connection);

    Answer answer_;
    Transport transport_;
    std::unique_ptr<QTcpServer> server_;
    std::vector<Request> requests_;
};

} // namespace pavonel::test
