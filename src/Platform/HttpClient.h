#pragma once

#include "Platform/Service.h"
#include "Platform/Time.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QUrl>

#include <functional>
#include <optional>

namespace pavonel {

struct HttpRequest {
    QByteArray method;
    QUrl url;
    QList<QPair<QByteArray, QByteArray>> headers;
    std::optional<QByteArray> body;
    Seconds timeout = 20;                      ///< Without a byte in either direction.
    qint64 largestReply = qint64{1024} * 1024; ///< In bytes; a longer reply counts as none.
};

struct HttpResponse {
    int status = 0;
    QByteArray data; ///< May be empty.
};

/// The process-wide HTTP client. Certificates are always verified. Redirects are followed, never from HTTPS
/// to HTTP, and credentials never travel to another server.
class HttpClient : public Service {
public:
    /// Nothing when there was no complete response: no network, no such host, no trust, a broken-off reply.
    using Completion = std::function<void(std::optional<HttpResponse> response)>;

    /// `completion` is called once, on a thread of the client's own; never after the client is gone.
    virtual void send(const HttpRequest &request, Completion completion) = 0;
};

} // namespace pavonel
