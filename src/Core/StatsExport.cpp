#include "Core/StatsExport.h"

#include "Core/Characters.h"
#include "Core/Stats.h"

#include <QByteArrayList>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

struct DatedDay {
    QDate date;
    Day day;
};

/// Keys have the digits of the locale in which they were written.
QDate dateOfKey(const QString &key) {
    QString digits = key;
    for (QChar &c : digits) {
        if (const int value = c.digitValue(); value >= 0)
            c = QChar(u'0' + value);
    }
    return QDate::fromString(digits, Qt::ISODate);
}

QString shown(const QString &key) {
    constexpr qsizetype longest = 40;
    return beginning(key.simplified(), longest);
}

/// Whether the figures fit the integers of the export.
bool isSound(const Day &day) {
    constexpr Seconds most = 9007199254740992; // what a double, and JSON with it, counts exactly
    return std::abs(day.screenSeconds) <= most && std::abs(day.breakSeconds) <= most;
}

std::vector<DatedDay> read(const QByteArray &json, QStringList &complaints) {
    std::vector<DatedDay> days;
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) {
        complaints.append(QStringLiteral("the statistics are damaged"));
        return days;
    }
    const QJsonObject object = document.object();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const QDate date = dateOfKey(member.key());
        const auto day = decodeDay(member.value().toObject());
        if (date.isValid() && day && isSound(*day))
            days.push_back({date, *day});
        else
            complaints.append(QStringLiteral("the record of \"%1\" is damaged").arg(shown(member.key())));
    }
    std::stable_sort(days.begin(), days.end(),
                     [](const DatedDay &a, const DatedDay &b) { return a.date < b.date; });
    return days;
}

QJsonObject record(const DatedDay &dated) {
    QJsonObject object = encode(dated.day);
    object[QStringLiteral("date")] = dated.date.toString(Qt::ISODate);
    object[QStringLiteral("screenSeconds")] = qint64{std::llround(dated.day.screenSeconds)};
    object[QStringLiteral("breakSeconds")] = qint64{std::llround(dated.day.breakSeconds)};
    return object;
}

QByteArray asJson(const std::vector<DatedDay> &days) {
    QJsonArray records;
    for (const DatedDay &dated : days)
        records.append(record(dated));
    return QJsonDocument(records).toJson();
}

QByteArray asCsv(const std::vector<DatedDay> &days) {
    constexpr const char *columns[] = {"date",    "micro",         "long",        "planned",
                                       "skipped", "screenSeconds", "breakSeconds"};
    QByteArrayList rows{QByteArrayList(std::begin(columns), std::end(columns)).join(',')};
    for (const DatedDay &dated : days) {
        const QJsonObject object = record(dated);
        QByteArrayList cells;
        for (const char *column : columns)
            cells.append(object.value(QLatin1String(column)).toVariant().toByteArray());
        rows.append(cells.join(','));
    }
    return rows.join('\n') + '\n';
}

} // namespace

StatsExport StatsExport::of(const StoredEntry &stored, Format format) {
    StatsExport made;
    std::vector<DatedDay> days;
    const auto *json = stored.value ? std::get_if<QByteArray>(&*stored.value) : nullptr;
    if (json)
        days = read(*json, made.complaints);
    else if (stored.value || stored.isDamaged)
        made.complaints.append(QStringLiteral("the statistics are damaged"));
    made.text = format == Format::json ? asJson(days) : asCsv(days);
    return made;
}

} // namespace pavonel
