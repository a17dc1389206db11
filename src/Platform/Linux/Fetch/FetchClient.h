#pragma once

#include "Platform/HttpClient.h"
#include "Platform/Qt/ProgramFiles.h"

#include <QThread>

#include <functional>

namespace pavonel {

/// HTTP through our tool "fetch", one process for each request, so that whatever a server does ends with
/// that. Two threads, which start with the first request and with the first download, read what the tool
/// brings.
class FetchClient final : public HttpClient {
public:
    explicit FetchClient(const ProgramFiles &files);

    void send(const HttpRequest &request, Completion completion) override;
    void download(const HttpDownload &download, FileCompletion completion) override;

private:
    class Worker {
    public:
        explicit Worker(const QString &name);
        Worker(const Worker &) = delete;
        Worker &operator=(const Worker &) = delete;
        ~Worker();

        /// What is made there belongs to `home`, and goes with it.
        void act(std::function<void(QObject &home)> action);

    private:
        QThread thread_;
        QObject *home_ = nullptr; ///< Lives and dies on the thread.
    };

    QString tool_;
    Worker requests_{QStringLiteral("http")};
    Worker downloads_{QStringLiteral("download")};
};

} // namespace pavonel
