#pragma once

#include "Platform/Service.h"
#include "Platform/Time.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace pavonel {

struct HttpRequest {
    QByteArray method;
    QUrl url;
    QList<QPair<QByteArray, QByteArray>> headers;
    std::optional<QByteArray> body;
    Seconds timeout = 20;                      ///< From the beginning to the end.
    qint64 largestReply = qint64{1024} * 1024; ///< In bytes; a longer reply counts as none.
};

struct HttpResponse {
    int status = 0;
    QByteArray data; ///< May be empty.
};

/// A file to fetch, and what it may cost.
struct HttpDownload {
    QUrl url;
    QString folder;                                  ///< Where the file is put; it must exist.
    Seconds timeout = 60;                            ///< With next to nothing coming.
    Seconds longest = 6 * 3600.0;                    ///< From the beginning to the end.
    qint64 largest = qint64{1024} * 1024 * 1024;     ///< In bytes.
    qint64 spaceToLeave = qint64{256} * 1024 * 1024; ///< In bytes, on the disk of the folder.
};

/// The process-wide HTTP client. Certificates are always verified. Redirects are followed, but not from HTTPS
/// to anything else, and credentials never to another server. What a server does costs no more than allowed.
class HttpClient : public Service {
public:
    /// Nothing when there was no whole response, or the request has a header with control characters in it.
    using Completion = std::function<void(std::optional<HttpResponse> response)>;

    /// The path of a new file with the whole body of the response, whatever its status; the file is the
    /// receiver's. Nothing, and no file, when there was no complete response or it went over a limit.
    using FileCompletion = std::function<void(std::optional<QString> file)>;

    /// `completion` is called once, on a thread of the client's own; never after the client is gone.
    virtual void send(const HttpRequest &request, Completion completion) = 0;

    /// As `send`. The completion may take its time: only other downloads wait for it.
    virtual void download(const HttpDownload &download, FileCompletion completion) = 0;
};

} // namespace pavonel
