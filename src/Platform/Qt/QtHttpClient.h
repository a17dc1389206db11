#pragma once

#include "Platform/HttpClient.h"

#include <QThread>

#include <memory>

class QNetworkAccessManager;

namespace pavonel {

/// HTTP through QtNetwork, on a thread that starts with the first request.
class QtHttpClient final : public HttpClient {
public:
    QtHttpClient();
    ~QtHttpClient() override;

    void send(const HttpRequest &request, Completion completion) override;

private:
    QThread thread_;
    QNetworkAccessManager *manager_ = nullptr; ///< Lives and dies on the thread.
};

} // namespace pavonel
