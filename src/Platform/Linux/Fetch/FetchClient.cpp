#include "Platform/Linux/Fetch/FetchClient.h"

#include "Platform/Linux/Fetch/FetchProcess.h"

#include <utility>

namespace pavonel {

FetchClient::Worker::Worker(const QString &name) {
    thread_.setObjectName(name);
}

FetchClient::Worker::~Worker() {
    if (!home_)
        return;
    QObject::connect(&thread_, &QThread::finished, home_, &QObject::deleteLater);
    thread_.quit();
    thread_.wait();
}

void FetchClient::Worker::act(std::function<void(QObject &)> action) {
    if (!home_) {
        home_ = new QObject;
        home_->moveToThread(&thread_);
    }
    if (!thread_.isRunning()) // the first time, or memory was short
        thread_.start();
    QMetaObject::invokeMethod(home_, [home = home_, action = std::move(action)] { action(*home); });
}

FetchClient::FetchClient(const ProgramFiles &files) : tool_(files.tool(QStringLiteral("fetch"))) {}

void FetchClient::send(const HttpRequest &request, Completion completion) {
    requests_.act([tool = tool_, request, completion = std::move(completion)](QObject &home) {
        const auto body = std::make_shared<HttpBodyInMemory>(request.largestReply);
        auto answer = [body, completion](std::optional<int> status) {
            completion(status ? std::optional(HttpResponse{*status, body->data()}) : std::nullopt);
        };
        const FetchLimits limits{request.timeout, 0, request.largestReply};
        (new FetchProcess(home, *body, std::move(answer)))->start(tool, fetchOrder(request, limits));
    });
}

void FetchClient::download(const HttpDownload &download, FileCompletion completion) {
    downloads_.act([tool = tool_, download, completion = std::move(completion)](QObject &home) {
        const auto body =
            std::make_shared<HttpBodyInFile>(download.folder, download.largest, download.spaceToLeave);
        auto answer = [body, completion](std::optional<int> status) {
            const QString file = status ? body->keep() : QString();
            completion(file.isEmpty() ? std::nullopt : std::optional(file));
        };
        HttpRequest request;
        request.method = "GET";
        request.url = download.url;
        const FetchLimits limits{download.longest, download.timeout, download.largest};
        (new FetchProcess(home, *body, std::move(answer)))->start(tool, fetchOrder(request, limits));
    });
}

} // namespace pavonel
