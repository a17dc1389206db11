#pragma once

#include "Platform/HttpClient.h"
#include "Platform/Qt/HttpBody.h"

#include <QNetworkReply>

class QNetworkAccessManager;

namespace pavonel {

/// One request on its way, redirects included. Belongs to the manager and goes with the answer.
class HttpExchange final : public QObject {
public:
    /// Gives the status and the body of the response; no status when there was no complete one.
    using Answer = std::function<void(std::optional<int> status)>;

    HttpExchange(QNetworkAccessManager &manager, HttpBody &body, Answer answer);

    void send(const HttpRequest &request);
    void giveUpAfter(Seconds longest);

private:
    void read();
    void finish();
    bool hasResponse(const QNetworkReply &reply) const;
    bool isWhole(const QNetworkReply &reply) const;
    void follow(const HttpRequest &next);
    void answer(std::optional<int> status);

    QNetworkAccessManager &manager_;
    HttpBody &body_;
    Answer answer_;
    HttpRequest request_;
    QNetworkReply *reply_ = nullptr;
    int redirects_ = 0;
};

} // namespace pavonel
