#include "Core/UpdaterRelease.h"

#include "Core/StrictJson.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <vector>

namespace pavonel {

namespace {

std::int64_t number(const QString &piece) {
    const QByteArray text = piece.toUtf8();
    const char *begin = text.startsWith('+') && !text.startsWith("+-") ? text.begin() + 1 : text.begin();
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(begin, text.end(), value);
    return error == std::errc() && end == text.end() ? value : 0;
}

std::vector<std::int64_t> numbers(const QString &version) {
    std::vector<std::int64_t> result;
    for (const QString &piece : version.split(u'.', Qt::SkipEmptyParts))
        result.push_back(number(piece));
    return result;
}

bool isTextOrNone(const QJsonValue &value) {
    return value.isUndefined() || value.isNull() || value.isString();
}

} // namespace

std::optional<Release> decodeRelease(const QByteArray &json) {
    const QJsonObject feed = QJsonDocument::fromJson(json).object(); // empty for anything but an object
    const auto version = strictJson::string(feed.value(u"version"));
    const auto url = strictJson::string(feed.value(u"url"));
    const auto sha256 = strictJson::string(feed.value(u"sha256"));
    const auto notes = strictJson::string(feed.value(u"notes"));
    const QJsonValue minimum = feed.value(u"minimumSystemVersion");
    const QJsonValue signature = feed.value(u"signature");
    if (!version || !url || !sha256 || !notes || !isTextOrNone(minimum) || !isTextOrNone(signature))
        return {};
    return Release{
        *version, *url, *sha256, *notes, strictJson::string(minimum), strictJson::string(signature)};
}

bool isNewerVersion(const QString &a, const QString &b) {
    std::vector<std::int64_t> ours = numbers(a);
    std::vector<std::int64_t> theirs = numbers(b);
    const std::size_t length = std::max(ours.size(), theirs.size());
    ours.resize(length);
    theirs.resize(length);
    return ours > theirs;
}

} // namespace pavonel
