#include "Platform/Qt/HttpExchange.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QTimer>

#include <chrono>
#include <utility>

namespace pavonel {

namespace {

constexpr int mostRedirects = 16;

QNetworkRequest networkRequest(const HttpRequest &request) {
    QNetworkRequest result(request.url);
    result.setTransferTimeout(static_cast<int>(request.timeout * 1000));
    // Qt would send the credentials along to wherever a redirect leads.
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    for (const auto &[name, value] : request.headers)
        result.setRawHeader(name, value);
    return result;
}

int statusOf(const QNetworkReply &reply) {
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

/// Qt reports a refusal by the server as an error of its own.
bool isRefusal(const QNetworkReply &reply) {
    const auto error = reply.error();
    return statusOf(reply) >= 400 && error > QNetworkReply::UnknownNetworkError &&
           error != QNetworkReply::ProtocolFailure;
}

bool isSameServer(const QUrl &a, const QUrl &b) {
    return a.scheme() == b.scheme() && a.host() == b.host() && a.port() == b.port();
}

bool isWeb(const QUrl &url) {
    return url.scheme() == u"https" || url.scheme() == u"http";
}

bool isSafe(const QUrl &from, const QUrl &to) {
    return isWeb(to) && (to.scheme() == u"https" || from.scheme() == u"http");
}

/// Where a response leads, with the method and the body that go there (RFC 9110, 15.4); absent when it leads
/// nowhere.
std::optional<HttpRequest> redirected(HttpRequest request, const QNetworkReply &reply) {
    const QUrl location = reply.attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (location.isEmpty())
        return {};
    const QUrl target = request.url.resolved(location);
    const int status = statusOf(reply);
    if (status == 303 || ((status == 301 || status == 302) && request.method == "POST")) {
        request.method = "GET";
        request.body.reset();
    }
    if (!isSameServer(request.url, target))
        request.headers.removeIf([](const auto &header) { return header.first == "Authorization"; });
    request.url = target;
    return request;
}

} // namespace

HttpExchange::HttpExchange(QNetworkAccessManager &manager, HttpBody &body, Answer answer)
    : QObject(&manager), manager_(manager), body_(body), answer_(std::move(answer)) {}

void HttpExchange::send(const HttpRequest &request) {
    if (!isWeb(request.url)) // Qt would read files of this machine too
        return answer({});
    request_ = request;
    reply_ = manager_.sendCustomRequest(networkRequest(request), request.method,
                                        request.body.value_or(QByteArray()));
    reply_->setParent(this);
    connect(reply_, &QNetworkReply::readyRead, this, &HttpExchange::read);
    connect(reply_, &QNetworkReply::finished, this, &HttpExchange::finish);
}

void HttpExchange::giveUpAfter(Seconds longest) {
    QTimer::singleShot(std::chrono::milliseconds(static_cast<qint64>(longest * 1000)), this, [this] {
        if (reply_)
            reply_->abort(); // finishes with an error
    });
}

void HttpExchange::read() {
    if (!body_.take(reply_->readAll()))
        reply_->abort();
}

void HttpExchange::finish() {
    QNetworkReply &reply = *std::exchange(reply_, nullptr);
    reply.deleteLater();
    if (!body_.take(reply.readAll()) || !hasResponse(reply))
        answer({});
    else if (const auto next = redirected(request_, reply))
        follow(*next);
    else
        answer(statusOf(reply));
}

bool HttpExchange::hasResponse(const QNetworkReply &reply) const {
    return (reply.error() == QNetworkReply::NoError || isRefusal(reply)) && isWhole(reply);
}

/// Qt takes a body that was cut off for a whole one when the end of the connection arrives along with the
/// last of it, and when the server refuses.
bool HttpExchange::isWhole(const QNetworkReply &reply) const {
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    return !length.isValid() || body_.size() >= length.toLongLong();
}

void HttpExchange::follow(const HttpRequest &next) {
    if (++redirects_ > mostRedirects || !isSafe(request_.url, next.url) || !body_.restart())
        answer({});
    else
        send(next);
}

void HttpExchange::answer(std::optional<int> status) {
    deleteLater();
    answer_(status);
}

} // namespace pavonel
