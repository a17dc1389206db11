#include "Platform/Qt/QtHttpClient.h"

#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>

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

bool isSameServer(const QUrl &a, const QUrl &b) {
    return a.scheme() == b.scheme() && a.host() == b.host() && a.port() == b.port();
}

bool isSafe(const QUrl &from, const QUrl &to) {
    return to.scheme() == u"https" || (to.scheme() == u"http" && from.scheme() == u"http");
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

/// One request on its way, redirects included. Deletes itself with the answer.
class Exchange final : public QObject {
public:
    Exchange(QNetworkAccessManager &manager, HttpClient::Completion completion)
        : QObject(&manager), manager_(manager), completion_(std::move(completion)) {}

    void send(const HttpRequest &request) {
        request_ = request;
        reply_ = manager_.sendCustomRequest(networkRequest(request), request.method,
                                            request.body.value_or(QByteArray()));
        reply_->setParent(this);
        connect(reply_, &QNetworkReply::readyRead, this, &Exchange::read);
        connect(reply_, &QNetworkReply::finished, this, &Exchange::finish);
    }

private:
    void read() {
        data_ += reply_->readAll();
        if (data_.size() > request_.largestReply)
            reply_->abort(); // finishes with an error
    }

    void finish() {
        QNetworkReply &reply = *std::exchange(reply_, nullptr);
        reply.deleteLater();
        data_ += reply.readAll();
        if (!hasResponse(reply))
            answer({});
        else if (const auto next = redirected(request_, reply))
            follow(*next);
        else
            answer(HttpResponse{statusOf(reply), data_});
    }

    bool hasResponse(const QNetworkReply &reply) const {
        return reply.error() == QNetworkReply::NoError || isRefusal(reply);
    }

    /// Qt reports a refusal by the server as an error of its own, which can hide that the reply was cut off.
    bool isRefusal(const QNetworkReply &reply) const {
        const auto error = reply.error();
        const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
        return statusOf(reply) >= 400 && error > QNetworkReply::UnknownNetworkError &&
               error != QNetworkReply::ProtocolFailure &&
               (!length.isValid() || data_.size() >= length.toLongLong());
    }

    void follow(const HttpRequest &next) {
        data_.clear();
        if (++redirects_ > mostRedirects || !isSafe(request_.url, next.url))
            answer({});
        else
            send(next);
    }

    void answer(std::optional<HttpResponse> response) {
        deleteLater();
        completion_(std::move(response));
    }

    QNetworkAccessManager &manager_;
    HttpClient::Completion completion_;
    HttpRequest request_;
    QNetworkReply *reply_ = nullptr;
    QByteArray data_;
    int redirects_ = 0;
};

} // namespace

QtHttpClient::QtHttpClient() {
    thread_.setObjectName(QStringLiteral("http"));
}

QtHttpClient::~QtHttpClient() {
    if (!manager_)
        return;
    QObject::connect(&thread_, &QThread::finished, manager_, &QObject::deleteLater);
    thread_.quit();
    thread_.wait();
}

void QtHttpClient::send(const HttpRequest &request, Completion completion) {
    if (!manager_) {
        QNetworkProxyFactory::setUseSystemConfiguration(true);
        manager_ = new QNetworkAccessManager;
        manager_->moveToThread(&thread_);
        thread_.start();
    }
    QMetaObject::invokeMethod(manager_, [manager = manager_, request, completion = std::move(completion)] {
        (new Exchange(*manager, completion))->send(request);
    });
}

} // namespace pavonel
