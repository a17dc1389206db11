#include "Platform/Linux/Fetch/FetchProcess.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <utility>

#include <sys/prctl.h>

namespace pavonel {

namespace {

QByteArray wholeSeconds(Seconds duration) {
    return QByteArray::number(static_cast<qint64>(std::ceil(duration)));
}

bool isOneLine(const QByteArray &text) {
    return std::none_of(text.begin(), text.end(), [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return code < 0x20 || code == 0x7f;
    });
}

} // namespace

QByteArray fetchOrder(const HttpRequest &request, const FetchLimits &limits) {
    QByteArrayList parts{request.method, request.url.toEncoded(QUrl::RemoveFragment),
                         wholeSeconds(limits.longest), wholeSeconds(limits.longestStall),
                         QByteArray::number(limits.largest)};
    for (const auto &[name, value] : request.headers) {
        parts.append(name + ": " + value);
        if (!isOneLine(parts.last()))
            return {};
    }
    parts.append(QByteArray());
    return parts.join('\0') + '\0' + request.body.value_or(QByteArray());
}

FetchProcess::FetchProcess(QObject &home, HttpBody &body, Answer answer)
    : QObject(&home), body_(body), answer_(std::move(answer)) {}

FetchProcess::~FetchProcess() {
    process_.disconnect(this);
    process_.kill();
    process_.waitForFinished();
}

void FetchProcess::start(const QString &tool, const QByteArray &order) {
    if (tool.isEmpty() || order.isEmpty())
        return answer({});
    connect(&process_, &QProcess::readyReadStandardOutput, this, &FetchProcess::read);
    connect(&process_, &QProcess::finished, this, &FetchProcess::finish);
    connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            answer({});
    });
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }); // with our thread
    process_.start(tool, QStringList());
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.write(order);
    process_.closeWriteChannel();
}

void FetchProcess::read() {
    if (!body_.take(process_.readAllStandardOutput()))
        process_.kill();
}

void FetchProcess::finish() {
    const bool isWhole = process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0 &&
                         body_.take(process_.readAllStandardOutput());
    const int status = process_.readAllStandardError().simplified().split(' ').last().toInt();
    answer(isWhole && status > 0 ? std::optional(status) : std::nullopt);
}

void FetchProcess::answer(std::optional<int> status) {
    deleteLater();
    answer_(status);
}

} // namespace pavonel
