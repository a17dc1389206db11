#pragma once

#include "Platform/HttpClient.h"
#include "Platform/Qt/HttpBody.h"

#include <QProcess>

namespace pavonel {

struct FetchLimits {
    Seconds longest;
    Seconds longestStall; ///< 0 when a stall may take that long, too.
    qint64 largest;       ///< In bytes, of the body.
};

/// A request as our tool "fetch" reads it; empty when it cannot be sent as it is, because what should be one
/// header would be two.
QByteArray fetchOrder(const HttpRequest &request, const FetchLimits &limits);

/// One request on its way. Belongs to its home and goes with the answer, or with the home.
class FetchProcess final : public QObject {
public:
    /// Gives the status of the response; no status when there was no complete one.
    using Answer = std::function<void(std::optional<int> status)>;

    FetchProcess(QObject &home, HttpBody &body, Answer answer);
    ~FetchProcess() override;

    void start(const QString &tool, const QByteArray &order);

private:
    void read();
    void finish();
    void answer(std::optional<int> status);

    HttpBody &body_;
    Answer answer_;
    QProcess process_;
};

} // namespace pavonel
