#include "Core/PlannedBreak.h"

#include "Core/StrictJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace pavonel {

namespace {

QString canonical(const QUuid &id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> uuid(const QJsonValue &value) {
    const auto text = strictJson::string(value);
    constexpr qsizetype canonicalLength = 36;
    if (!text || text->size() != canonicalLength)
        return {};
    const QUuid id = QUuid::fromString(*text);
    if (id.toString(QUuid::WithoutBraces).compare(*text, Qt::CaseInsensitive) != 0)
        return {};
    return id;
}

std::optional<std::set<int>> integers(const QJsonValue &value) {
    if (!value.isArray())
        return {};
    std::set<int> members;
    const QJsonArray array = value.toArray();
    for (const QJsonValue element : array) {
        const auto member = strictJson::integer(element);
        if (!member)
            return {};
        members.insert(*member);
    }
    return members;
}

QJsonObject encode(const PlannedBreak &record) {
    QJsonArray weekdays;
    for (const int weekday : record.weekdays)
        weekdays.append(weekday);
    return {{QStringLiteral("id"), canonical(record.id)},  {QStringLiteral("label"), record.label},
            {QStringLiteral("hour"), record.hour},         {QStringLiteral("minute"), record.minute},
            {QStringLiteral("duration"), record.duration}, {QStringLiteral("weekdays"), weekdays},
            {QStringLiteral("enabled"), record.enabled}};
}

std::optional<PlannedBreak> decode(const QJsonObject &object) {
    const auto id = uuid(object.value(u"id"));
    const auto label = strictJson::string(object.value(u"label"));
    const auto hour = strictJson::integer(object.value(u"hour"));
    const auto minute = strictJson::integer(object.value(u"minute"));
    const auto duration = strictJson::number(object.value(u"duration"));
    const auto weekdays = integers(object.value(u"weekdays"));
    const auto enabled = strictJson::boolean(object.value(u"enabled"));
    if (!id || !label || !hour || !minute || !duration || !weekdays || !enabled)
        return {};
    return PlannedBreak{*id, *label, *hour, *minute, *duration, *weekdays, *enabled};
}

} // namespace

std::optional<QByteArray> encodePlannedBreaks(const PlannedBreaks &breaks) {
    QJsonArray array;
    for (const PlannedBreak &record : breaks) {
        if (!std::isfinite(record.duration))
            return {};
        array.append(encode(record));
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<PlannedBreaks> decodePlannedBreaks(const QByteArray &json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return {};
    PlannedBreaks breaks;
    const QJsonArray array = document.array();
    breaks.reserve(static_cast<std::size_t>(array.size()));
    for (const QJsonValue element : array) {
        const auto record = element.isObject() ? decode(element.toObject()) : std::nullopt;
        if (!record)
            return {};
        breaks.push_back(*record);
    }
    return breaks;
}

} // namespace pavonel
