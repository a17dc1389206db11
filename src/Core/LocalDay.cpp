#include "Core/LocalDay.h"

#include <QDateTime>
#include <QLocale>

#include <array>
#include <cmath>

namespace pavonel {

namespace {

constexpr qint64 secondsPerDay = 86400;

QDateTime utc(double secondsSinceEpoch) {
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(secondsSinceEpoch * 1000)), Qt::UTC);
}

double sinceEpoch(Instant instant) {
    return instant.time_since_epoch().count();
}

int offsetAt(double secondsSinceEpoch, const QTimeZone &zone) {
    return zone.offsetFromUtc(utc(secondsSinceEpoch));
}

/// The first instant at which a clock of the zone shows `wall` (given as if it were UTC), if there is one.
std::optional<Instant> firstShowing(double wall, const QTimeZone &zone) {
    // Around one date a zone has at most two offsets: the one before a change and the one after. The greater
    // offset yields the earlier instant.
    std::array offsets{offsetAt(wall - secondsPerDay, zone), offsetAt(wall + secondsPerDay, zone)};
    if (offsets[0] < offsets[1])
        std::swap(offsets[0], offsets[1]);
    for (const int offset : offsets) {
        if (offsetAt(wall - offset, zone) == offset)
            return Instant{std::chrono::duration<double>(wall - offset)};
    }
    return {};
}

/// The end of the gap in which `wall` lies: the instant of the zone's change.
std::optional<Instant> endOfGap(double wall, const QTimeZone &zone) {
    const auto change = zone.nextTransition(utc(wall - secondsPerDay - 14 * 3600));
    if (!change.atUtc.isValid())
        return {};
    return Instant{std::chrono::milliseconds(change.atUtc.toMSecsSinceEpoch())};
}

} // namespace

QDate dateOf(Instant instant, const QTimeZone &zone) {
    const double seconds = sinceEpoch(instant);
    return utc(seconds + offsetAt(seconds, zone)).date();
}

std::optional<Instant> startOfDay(QDate date, const QTimeZone &zone) {
    return clockTimeOn(date, QTime(0, 0), zone);
}

std::optional<Instant> clockTimeOn(QDate date, QTime time, const QTimeZone &zone) {
    if (!date.isValid() || !time.isValid())
        return {};
    const auto wall = static_cast<double>(QDateTime(date, time, Qt::UTC).toSecsSinceEpoch());
    auto instant = firstShowing(wall, zone);
    if (!instant)
        instant = endOfGap(wall, zone);
    if (!instant || dateOf(*instant, zone) != date)
        return {};
    return instant;
}

LocalDay LocalDay::containing(Instant instant, const QTimeZone &zone) {
    const QDate date = dateOf(instant, zone);
    std::optional<Instant> end;
    for (int days = 1; !end && days <= 2; ++days) // two where the zone leaves tomorrow out
        end = startOfDay(date.addDays(days), zone);
    const auto begin = startOfDay(date, zone);
    return {date, zone, begin.value_or(instant), end.value_or(instant)};
}

const LocalDay &Today::day() const {
    const Instant now = loop_.now();
    const QTimeZone zone = loop_.zone();
    if (!day_ || !day_->contains(now, zone)) {
        day_ = LocalDay::containing(now, zone);
        key_ = dayKey(day_->date);
    }
    return *day_;
}

const QString &Today::key() const {
    day();
    return key_;
}

QString dayKey(QDate date) {
    return QLocale().toString(date, u"yyyy-MM-dd");
}

} // namespace pavonel
