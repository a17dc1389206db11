#include "Platform/Qt/QtHttpClient.h"

#include "Platform/Qt/HttpExchange.h"

#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>

#include <utility>

namespace pavonel {

QtHttpClient::Worker::Worker(const QString &name) {
    thread_.setObjectName(name);
}

QtHttpClient::Worker::~Worker() {
    if (!manager_)
        return;
    QObject::connect(&thread_, &QThread::finished, manager_, &QObject::deleteLater);
    thread_.quit();
    thread_.wait();
}

void QtHttpClient::Worker::act(std::function<void(QNetworkAccessManager &)> action) {
    if (!manager_) {
        QNetworkProxyFactory::setUseSystemConfiguration(true);
        manager_ = new QNetworkAccessManager;
        manager_->moveToThread(&thread_);
        thread_.start();
    }
    QMetaObject::invokeMethod(manager_,
                              [manager = manager_, action = std::move(action)] { action(*manager); });
}

void QtHttpClient::send(const HttpRequest &request, Completion completion) {
    requests_.act([request, completion = std::move(completion)](QNetworkAccessManager &manager) {
        const auto body = std::make_shared<HttpBodyInMemory>(request.largestReply);
        auto answer = [body, completion](std::optional<int> status) {
            completion(status ? std::optional(HttpResponse{*status, body->data()}) : std::nullopt);
        };
        (new HttpExchange(manager, *body, std::move(answer)))->send(request);
    });
}

void QtHttpClient::download(const HttpDownload &download, FileCompletion completion) {
    downloads_.act([download, completion = std::move(completion)](QNetworkAccessManager &manager) {
        const auto body =
            std::make_shared<HttpBodyInFile>(download.folder, download.largest, download.spaceToLeave);
        auto answer = [body, completion](std::optional<int> status) {
            const QString file = status ? body->keep() : QString();
            completion(file.isEmpty() ? std::nullopt : std::optional(file));
        };
        HttpRequest request;
        request.method = "GET";
        request.url = download.url;
        request.headers.emplaceBack("Accept-Encoding", "identity"); // what is small here must be small there
        request.timeout = download.timeout;
        auto *exchange = new HttpExchange(manager, *body, std::move(answer));
        exchange->giveUpAfter(download.longest);
        exchange->send(request);
    });
}

} // namespace pavonel
