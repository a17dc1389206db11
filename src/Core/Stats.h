#pragma once

#include "Core/LocalDay.h"
#include "Core/Observable.h"
#include "Platform/UserDefaults.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <map>
#include <vector>

namespace pavonel {

/// What happened on one calendar day.
struct Day {
    int micro = 0;
    int long_ = 0;
    int planned = 0;
    int skipped = 0;
    Seconds screenSeconds = 0;
    Seconds breakSeconds = 0;

    bool operator==(const Day &) const = default;
};

/// A day as it is stored. Decoding is strict: without one of the six members there is no day.
QJsonObject encode(const Day &day);
std::optional<Day> decodeDay(const QJsonObject &object);

/// A day of the statistics page.
struct LabelledDay {
    QString label; ///< The weekday in English, abbreviated: "Mon".
    Day day;

    bool operator==(const LabelledDay &) const = default;
};

/// By day key, see `dayKey`; keys sort in date order.
using Days = std::map<QString, Day>;

/// The statistics: one small record a day, kept under "stats.days" as a JSON object whose members are the day
/// keys. What cannot be decoded starts empty.
class Stats final : public Observable {
public:
    Stats(UserDefaults &defaults, const MainLoop &loop);

    static Stats &shared();

    const Days &days() const { return days_; }
    void setDays(Days days);

    /// All zero on a day without a record.
    Day today() const { return on(loop_.now()); }
    void setToday(const Day &day) { set(loop_.now(), day); }

    /// The same of the day that it is at `now`, for one who has read the clock already.
    Day on(Instant now) const;
    void set(Instant now, const Day &day);
    void change(Instant now, const std::function<void(Day &)> &change);

    /// Oldest first, the last is today.
    std::vector<LabelledDay> lastWeek() const;

    /// Puts the counts on disk now instead of within a minute.
    void save() { defaults_.save(); }

    static const QString key;

private:
    void persist(Instant now);
    void prune(QDate today);
    std::optional<StoredValue> encodeDays();

    UserDefaults &defaults_;
    const MainLoop &loop_;
    Today today_;
    Days days_;
    /// The day and how many there were when they were pruned last.
    std::pair<QDate, std::size_t> pruned_;
    bool isStoredLazily_ = false; ///< From the first change on, so that a store without one stays as it is.
    /// Each day as it was last encoded: of all that is written every minute, only today changes.
    std::map<QString, std::pair<Day, QByteArray>> encoded_;
};

} // namespace pavonel
