#pragma once

#include "Platform/MainLoop.h"

#include <QDate>
#include <QTime>

#include <optional>

namespace pavonel {

/// The calendar date of an instant in a zone.
QDate dateOf(Instant instant, const QTimeZone &zone);

/// The first instant of a date. Where midnight does not exist that day, the first time that does. Absent for
/// a date that a zone left out altogether.
std::optional<Instant> startOfDay(QDate date, const QTimeZone &zone);

/// When a clock shows `time` on `date`: the next time that exists where this one is skipped, the first of two
/// where it comes twice. Absent when the time is invalid or the zone has nothing left of that date.
std::optional<Instant> clockTimeOn(QDate date, QTime time, const QTimeZone &zone);

/// A local day as a span of instants.
struct LocalDay {
    QDate date;
    QTimeZone zone;
    Instant begin;
    Instant end; ///< Past the last instant.

    static LocalDay containing(Instant instant, const QTimeZone &zone);
    bool contains(Instant instant, const QTimeZone &inZone) const {
        return begin <= instant && instant < end && zone == inZone;
    }
};

/// The day it is. Asked every second, so it looks into the calendar only when the day or the zone has
/// changed.
class Today {
public:
    explicit Today(const MainLoop &loop) : loop_(loop) {}

    const LocalDay &day() const;

    /// The date as "yyyy-MM-dd" in the user's locale, under which the day's statistics stand.
    const QString &key() const;

private:
    const MainLoop &loop_;
    mutable std::optional<LocalDay> day_;
    mutable QString key_;
};

/// A date as the key of a day's statistics.
QString dayKey(QDate date);

} // namespace pavonel
