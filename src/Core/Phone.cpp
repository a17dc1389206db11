#include "Core/Phone.h"

#include <QJsonDocument>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace pavonel {

namespace {

constexpr Seconds requestTimeout = 20;
constexpr Seconds pollInterval = 2;
constexpr Seconds codeLife = 900;

QString placeholderCode() {
    return QStringLiteral("······");
}

qint64 truncated(Seconds duration) {
    constexpr double limit = 9223372036854775808.0; // 2^63, the first double past the 64-bit integers
    if (!(duration > -limit && duration < limit))
        std::abort();
    return static_cast<qint64>(duration);
}

/// A token goes into a header, which must stay one.
bool canBeSent(const QString &token) {
    return std::none_of(token.begin(), token.end(),
                        [](QChar character) { return character.category() == QChar::Other_Control; });
}

QUrl appended(QUrl base, const char *path) {
    QString folder = base.path(QUrl::FullyEncoded);
    while (folder.endsWith(u'/'))
        folder.chop(1);
    base.setPath(folder + QString::fromLatin1(path), QUrl::StrictMode);
    return base;
}

std::variant<QJsonObject, PairingError> classified(const std::optional<HttpResponse> &response) {
    if (!response)
        return PairingError{QStringLiteral("Could not reach the pairing service.")};
    if (response->status < 200 || response->status > 299)
        return PairingError{QStringLiteral("The pairing service said no (%1).").arg(response->status)};
    return QJsonDocument::fromJson(response->data).object(); // empty for anything but an object
}

} // namespace

const QString Phone::tokenKey = QStringLiteral("phonePairToken");

std::optional<QUrl> Phone::serviceAddress() {
    constexpr const char *variable = "PAVONEL_PAIR_HOST";
    if (!qEnvironmentVariableIsSet(variable))
        return QUrl(QStringLiteral("https://pair.pavonel.app"));
    const QUrl address(qEnvironmentVariable(variable), QUrl::StrictMode);
    return address.isValid() ? std::optional(address) : std::nullopt;
}

Phone::Phone(HttpClient &http, MainLoop &loop, UserDefaults &defaults, QUrl base)
    : http_(http), loop_(loop), defaults_(defaults), base_(std::move(base)) {
    if (token())
        state = Paired{};
}

QString Phone::serviceName() const {
    return base_.scheme().startsWith(u"http") ? base_.authority(QUrl::PrettyDecoded).section(u'@', -1)
                                              : QString();
}

QString Phone::pageFor(const QString &code) const {
    if (serviceName().isEmpty() || code == placeholderCode())
        return {};
    QUrl page = appended(base_, "/");
    page.setUserInfo({});
    page.setFragment(code);
    return page.toString(QUrl::FullyEncoded);
}

void Phone::startPairing() {
    state = Waiting{placeholderCode()};
    request("POST", "/pair/start", Credentials::none, {}, [this, attempt = ++attempt_](const Result &result) {
        if (attempt == attempt_)
            receiveCode(result);
    });
}

void Phone::receiveCode(const Result &result) {
    if (const auto *error = std::get_if<PairingError>(&result)) {
        state = Failed{error->message};
        return;
    }
    const auto &reply = std::get<QJsonObject>(result);
    const QJsonValue code = reply.value(u"code");
    const QJsonValue token = reply.value(u"macToken");
    if (!code.isString() || !token.isString() || !canBeSent(token.toString())) {
        state = Failed{QStringLiteral("The server sent something unexpected.")};
        return;
    }
    defaults_.set(tokenKey, token.toString());
    state = Waiting{code.toString()};
    startPolling();
}

void Phone::startPolling() {
    ++polling_;
    const Instant deadline = loop_.now() + codeLife;
    poll_ = loop_.every(pollInterval, [this, deadline] { poll(deadline); });
}

void Phone::poll(Instant deadline) {
    if (loop_.now() > deadline) {
        ++polling_;
        defaults_.remove(tokenKey);
        state = Failed{QStringLiteral("That code expired. Try again.")};
        poll_.reset();
        return;
    }
    request("GET", "/pair/status", Credentials::token, {}, [this, polling = polling_](const Result &result) {
        if (polling == polling_)
            receiveStatus(result);
    });
}

void Phone::receiveStatus(const Result &result) {
    const auto *reply = std::get_if<QJsonObject>(&result);
    if (!reply || reply->value(u"paired") != QJsonValue(true))
        return;
    ++polling_;
    poll_.reset();
    state = Paired{};
}

void Phone::unpair() {
    ++attempt_;
    ++polling_;
    poll_.reset();
    request("DELETE", "/pair", Credentials::token, {}, {});
    defaults_.remove(tokenKey);
    state = Unpaired{};
}

void Phone::breakStarted(BreakKind kind, const QString &title, Seconds duration) {
    if (!token())
        return;
    const QJsonObject body{{QStringLiteral("kind"), name(kind)},
                           {QStringLiteral("title"), title},
                           {QStringLiteral("seconds"), truncated(duration)}};
    request("POST", "/break", Credentials::token, body, {});
}

void Phone::breakEnded() {
    if (token())
        request("DELETE", "/break", Credentials::token, {}, {});
}

std::optional<QString> Phone::token() const {
    const auto stored = defaults_.value(tokenKey);
    const auto *text = stored ? std::get_if<QString>(&*stored) : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

void Phone::request(const char *method, const char *path, Credentials credentials,
                    const std::optional<QJsonObject> &body, Completion completion) {
    HttpRequest request;
    request.method = method;
    request.url = appended(base_, path);
    request.timeout = requestTimeout;
    const auto secret = credentials == Credentials::token ? token() : std::nullopt;
    if (secret)
        request.headers.emplaceBack("Authorization", "Bearer " + secret->toUtf8());
    if (body) {
        request.headers.emplaceBack("Content-Type", "application/json");
        request.body = QJsonDocument(*body).toJson(QJsonDocument::Compact);
    }
    http_.send(request, [&loop = loop_, watch = lifetime_.watch(),
                         completion = std::move(completion)](const std::optional<HttpResponse> &response) {
        if (completion)
            loop.post(watch.guard([completion, result = classified(response)] { completion(result); }));
    });
}

} // namespace pavonel
