#include "Core/LocalDay.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>

namespace pavonel {

namespace {

constexpr double largestOffset = 16 * 3600; // none was ever further from UTC

QDateTime utc(double secondsSinceEpoch) {
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(secondsSinceEpoch * 1000)), Qt::UTC);
}

double sinceEpoch(Instant instant) {
    return instant.time_since_epoch().count();
}

Instant instantAt(double secondsSinceEpoch) {
    return Instant{std::chrono::duration<Seconds>(secondsSinceEpoch)};
}

double offsetAt(double secondsSinceEpoch, const QTimeZone &zone) {
    return zone.offsetFromUtc(utc(secondsSinceEpoch));
}

double midnightOf(QDate date) {
    return static_cast<double>(QDateTime(date, QTime(0, 0), Qt::UTC).toSecsSinceEpoch());
}

/// The midnight before (or at) what a clock shows at an instant while the offset stays.
double midnightBefore(double instant, double offset) {
    return std::floor((instant + offset) / dayLength) * dayLength - offset;
}

std::optional<double> timeOf(const QTimeZone::OffsetData &change) {
    if (!change.atUtc.isValid())
        return {};
    return static_cast<double>(change.atUtc.toSecsSinceEpoch());
}

double endOfDate(double instant, QDate date, const QTimeZone &zone) {
    for (;;) {
        const double midnight = midnightBefore(instant, offsetAt(instant, zone)) + dayLength;
        const auto change = timeOf(zone.nextTransition(utc(instant)));
        if (!change || *change > midnight)
            return midnight;
        if (dateOf(instantAt(*change), zone) != date)
            return *change;
        instant = *change;
    }
}

double beginOfDate(double instant, QDate date, const QTimeZone &zone) {
    constexpr double moment = 0.001;
    for (;;) {
        const double midnight = midnightBefore(instant, offsetAt(instant, zone));
        const auto change = timeOf(zone.previousTransition(utc(instant + moment)));
        if (!change || *change < midnight)
            return midnight;
        if (dateOf(instantAt(*change - moment), zone) != date)
            return *change;
        instant = *change - moment;
    }
}

} // namespace

QDate dateOf(Instant instant, const QTimeZone &zone) {
    const double seconds = sinceEpoch(instant);
    return utc(seconds + offsetAt(seconds, zone)).date();
}

ZonedDate::ZonedDate(QDate date, const QTimeZone &zone) : date_(date) {
    if (!date.isValid())
        return;
    const double earliest = midnightOf(date) - largestOffset;
    const double latest = midnightOf(date) + dayLength + largestOffset;
    spans_.push_back({earliest, offsetAt(earliest, zone)});
    for (const auto &change : zone.transitions(utc(earliest + 1), utc(latest)))
        spans_.push_back({*timeOf(change), static_cast<double>(change.offsetFromUtc)});
}

std::optional<Instant> ZonedDate::at(QTime time) const {
    if (spans_.empty() || !time.isValid())
        return {};
    const double wall = midnightOf(date_) + time.msecsSinceStartOfDay() / 1000.0;
    auto instant = firstShowing(wall);
    if (!instant)
        instant = endOfGap(wall);
    return instant ? std::optional(instantAt(*instant)) : std::nullopt;
}

std::optional<double> ZonedDate::firstShowing(double wall) const {
    for (auto span = spans_.begin(); span != spans_.end(); ++span) {
        const double instant = wall - span->offset;
        const auto next = std::next(span);
        if (instant >= span->begin && (next == spans_.end() || instant < next->begin))
            return instant;
    }
    return {};
}

std::optional<double> ZonedDate::endOfGap(double wall) const {
    for (std::size_t i = 1; i < spans_.size(); ++i) {
        const double leaves = spans_[i].begin + spans_[i - 1].offset;
        const double arrives = spans_[i].begin + spans_[i].offset;
        if (leaves <= wall && wall < arrives && arrives < midnightOf(date_) + dayLength)
            return spans_[i].begin;
    }
    return {};
}

LocalDay LocalDay::containing(Instant instant, const QTimeZone &zone) {
    const QDate date = dateOf(instant, zone);
    const double seconds = sinceEpoch(instant);
    return {date, zone, instantAt(beginOfDate(seconds, date, zone)),
            instantAt(endOfDate(seconds, date, zone))};
}

const LocalDay &Today::day(Instant now) const {
    const QTimeZone zone = loop_.zone();
    if (!day_ || !day_->contains(now, zone)) {
        day_ = LocalDay::containing(now, zone);
        key_ = dayKey(day_->date);
    }
    return *day_;
}

const QString &Today::key(Instant now) const {
    day(now);
    return key_;
}

QString dayKey(QDate date) {
    return QLocale().toString(date, u"yyyy-MM-dd");
}

} // namespace pavonel
