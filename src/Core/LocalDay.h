#pragma once

#include "Platform/MainLoop.h"

#include <QDate>
#include <QTime>

#include <optional>
#include <vector>

namespace pavonel {

/// The calendar date of an instant in a zone.
QDate dateOf(Instant instant, const QTimeZone &zone);

/// One date as the clocks of a zone show it: where the zone changes its offset, times are left out or come
/// twice.
class ZonedDate {
public:
    ZonedDate(QDate date, const QTimeZone &zone);

    QDate date() const { return date_; }

    /// When a clock shows `time` on this date: the next time that exists where this one is left out, the
    /// first of two where it comes twice. Absent when the time is invalid or the date has nothing left.
    std::optional<Instant> at(QTime time) const;

private:
    /// What a clock shows is the instant plus the offset that holds at it.
    struct Span {
        double begin;
        double offset;
    };
    std::optional<double> firstShowing(double wall) const;
    std::optional<double> endOfGap(double wall) const;

    QDate date_;
    std::vector<Span> spans_; ///< Around this date, each up to the next one.
};

/// A span of instants without a break that have the same date. It is the whole day, but for a day that begins
/// twice because its first minutes are repeated.
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

    const LocalDay &day(Instant now) const;

    /// The date as "yyyy-MM-dd" in the user's locale, under which the day's statistics stand.
    const QString &key(Instant now) const;

private:
    const MainLoop &loop_;
    mutable std::optional<LocalDay> day_;
    mutable QString key_;
};

/// A date as the key of a day's statistics.
QString dayKey(QDate date);

} // namespace pavonel
