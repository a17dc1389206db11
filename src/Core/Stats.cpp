#include "Core/Stats.h"

#include "Core/StrictJson.h"

#include <QByteArrayList>
#include <QJsonDocument>
#include <QLocale>

#include <cmath>
#include <utility>

namespace pavonel {

namespace {

constexpr std::size_t keptDays = 60;
constexpr int daysInWeek = 7;

/// `"2026-03-09":{…}`, a member of the stored object.
std::optional<QByteArray> encodeMember(const QString &key, const Day &day) {
    if (!std::isfinite(day.screenSeconds) || !std::isfinite(day.breakSeconds))
        return {};
    const QByteArray object = QJsonDocument(QJsonObject{{key, encode(day)}}).toJson(QJsonDocument::Compact);
    return object.sliced(1, object.size() - 2);
}

std::optional<Days> decodeDays(const QByteArray &json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return {};
    Days days;
    const QJsonObject object = document.object();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const auto day = member.value().isObject() ? decodeDay(member.value().toObject()) : std::nullopt;
        if (!day)
            return {};
        days.emplace(member.key(), *day);
    }
    return days;
}

} // namespace

QJsonObject encode(const Day &day) {
    return {{QStringLiteral("micro"), day.micro},
            {QStringLiteral("long"), day.long_},
            {QStringLiteral("planned"), day.planned},
            {QStringLiteral("skipped"), day.skipped},
            {QStringLiteral("screenSeconds"), day.screenSeconds},
            {QStringLiteral("breakSeconds"), day.breakSeconds}};
}

std::optional<Day> decodeDay(const QJsonObject &object) {
    const auto micro = strictJson::integer(object.value(u"micro"));
    const auto long_ = strictJson::integer(object.value(u"long"));
    const auto planned = strictJson::integer(object.value(u"planned"));
    const auto skipped = strictJson::integer(object.value(u"skipped"));
    const auto screenSeconds = strictJson::number(object.value(u"screenSeconds"));
    const auto breakSeconds = strictJson::number(object.value(u"breakSeconds"));
    if (!micro || !long_ || !planned || !skipped || !screenSeconds || !breakSeconds)
        return {};
    return Day{*micro, *long_, *planned, *skipped, *screenSeconds, *breakSeconds};
}

const QString Stats::key = QStringLiteral("stats.days");

Stats::Stats(UserDefaults &defaults, const MainLoop &loop) : defaults_(defaults), loop_(loop), today_(loop) {
    const auto stored = defaults_.value(key);
    const auto *json = stored ? std::get_if<QByteArray>(&*stored) : nullptr;
    if (json)
        days_ = decodeDays(*json).value_or(Days{});
}

void Stats::setDays(Days days) {
    announceChange();
    days_ = std::move(days);
    pruned_ = {};
    persist(loop_.now());
}

Day Stats::on(Instant now) const {
    const auto found = days_.find(today_.key(now));
    return found == days_.end() ? Day{} : found->second;
}

void Stats::set(Instant now, const Day &day) {
    change(now, [&day](Day &stored) { stored = day; });
}

void Stats::change(Instant now, const std::function<void(Day &)> &change) {
    announceChange();
    change(days_[today_.key(now)]);
    persist(now);
}

std::vector<LabelledDay> Stats::lastWeek() const {
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QDate today = today_.day(loop_.now()).date;
    std::vector<LabelledDay> week;
    for (int offset = daysInWeek - 1; offset >= 0; --offset) {
        const QDate date = today.addDays(-offset);
        if (!date.isValid())
            continue;
        const auto found = days_.find(dayKey(date));
        week.push_back({english.toString(date, u"ddd"), found == days_.end() ? Day{} : found->second});
    }
    return week;
}

void Stats::persist(Instant now) {
    const QDate today = today_.day(now).date;
    if (pruned_ != std::pair(today, days_.size())) {
        prune(today);
        pruned_ = {today, days_.size()};
    }
    if (std::exchange(isStoredLazily_, true))
        defaults_.noteChange(key);
    else
        defaults_.setLazily(key, [this] { return encodeDays(); });
}

void Stats::prune(QDate today) {
    if (days_.size() <= keptDays)
        return;
    const QDate cutOff = today.addDays(-static_cast<int>(keptDays));
    if (cutOff.isValid())
        days_.erase(days_.begin(), days_.lower_bound(dayKey(cutOff)));
}

std::optional<StoredValue> Stats::encodeDays() {
    QByteArrayList members;
    auto known = encoded_.begin();
    for (const auto &[dateKey, day] : days_) {
        while (known != encoded_.end() && known->first < dateKey)
            known = encoded_.erase(known);
        if (known == encoded_.end() || known->first != dateKey)
            known = encoded_.emplace_hint(known, dateKey, std::pair<Day, QByteArray>());
        auto &[encodedDay, member] = (known++)->second;
        if (member.isEmpty() || encodedDay != day) {
            auto changed = encodeMember(dateKey, day);
            if (!changed)
                return {};
            encodedDay = day;
            member = std::move(*changed);
        }
        members.append(member);
    }
    encoded_.erase(known, encoded_.end());
    return '{' + members.join(',') + '}';
}

} // namespace pavonel
