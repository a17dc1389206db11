#pragma once

#include "support/HttpServer.h"

#include <QTcpSocket>
#include <QTimer>

#include <chrono>
#include <ostream>

namespace pavonel::test {

/// Writes the beginning, and then the piece again and again for as long as somebody reads; adds up the bytes.
inline HttpServer::Answer pour(const QByteArray &beginning, const QByteArray &piece, qint64 &written) {
    return [=, &written](const auto &, QTcpSocket &connection) {
        const QByteArray pieces = piece.repeated(256 * 1024 / piece.size());
        const auto more = [&connection, &written, pieces] {
            if (connection.bytesToWrite() < 64 * 1024)
                written += connection.write(pieces);
        };
        connection.write(beginning);
        QObject::connect(&connection, &QTcpSocket::bytesWritten, &connection, more);
        more();
    };
}

/// Writes the beginning, and then the piece again and again after each such time.
inline HttpServer::Answer trickle(const QByteArray &beginning, const QByteArray &piece,
                                  std::chrono::milliseconds interval) {
    return [=](const auto &, QTcpSocket &connection) {
        connection.write(beginning);
        auto *timer = new QTimer(&connection);
        QObject::connect(timer, &QTimer::timeout, &connection,
                         [&connection, piece] { connection.write(piece); });
        timer->start(interval);
    };
}

struct Flood {
    const char *name;
    const char *beginning;
    const char *piece;
};

inline void PrintTo(const Flood &flood, std::ostream *out) {
    *out << flood.name;
}

/// What a server can send without end.
constexpr Flood floods[] = {
    {"headers", "HTTP/1.1 200 OK\r\n", "X-Header: and so on and so on\r\n"},
    {"a_header", "HTTP/1.1 200 OK\r\nX-Header: ", "and so on "},
    {"a_status_line", "HTTP/1.1 200 ", "and so on "},
    {"interim_responses", "", "HTTP/1.1 100 Continue\r\n\r\n"},
    {"interim_responses_with_headers", "", "HTTP/1.1 103 Early Hints\r\nLink: <x>\r\n\r\n"},
    {"a_body", "HTTP/1.1 200 OK\r\n\r\n", "and so on "},
    {"chunks", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n", "2\r\n[[\r\n"},
    {"trailers", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n", "X-Trailer: and so on\r\n"},
    {"the_body_of_a_redirect", "HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n", "and so on "},
};

} // namespace pavonel::test
