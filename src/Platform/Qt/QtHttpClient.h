#pragma once

#include "Platform/HttpClient.h"

#include <QThread>

#include <functional>

class QNetworkAccessManager;

namespace pavonel {

/// HTTP through QtNetwork, on two threads that start with the first request and with the first download.
class QtHttpClient final : public HttpClient {
public:
    void send(const HttpRequest &request, Completion completion) override;
    void download(const HttpDownload &download, FileCompletion completion) override;

private:
    class Worker {
    public:
        explicit Worker(const QString &name);
        Worker(const Worker &) = delete;
        Worker &operator=(const Worker &) = delete;
        ~Worker();

        void act(std::function<void(QNetworkAccessManager &)> action);

    private:
        QThread thread_;
        QNetworkAccessManager *manager_ = nullptr; ///< Lives and dies on the thread.
    };

    Worker requests_{QStringLiteral("http")};
    Worker downloads_{QStringLiteral("download")};
};

} // namespace pavonel
