#include "Core/RelativeTime.h"

#include <array>
#include <cmath>

namespace pavonel {

namespace {

struct Unit {
    Seconds length;
    const char *name;
    const char *lastOne; ///< How the single one before is called; null for "1 … ago".
    const char *nextOne;
};

constexpr std::array units{Unit{365 * dayLength, "year", "last year", "next year"},
                           Unit{30 * dayLength, "month", "last month", "next month"},
                           Unit{7 * dayLength, "week", "last week", "next week"},
                           Unit{dayLength, "day", "yesterday", "tomorrow"},
                           Unit{3600, "hour", nullptr, nullptr},
                           Unit{60, "minute", nullptr, nullptr},
                           Unit{1, "second", nullptr, nullptr}};

} // namespace

QString relativeTime(Instant moment, Instant now) {
    constexpr Seconds longest = 1e12;
    const Seconds away = secondsBetween(now, moment);
    const Seconds distance = std::fmin(std::fabs(away), longest);
    for (const Unit &unit : units) {
        const auto count = static_cast<qint64>(distance / unit.length);
        if (count == 0)
            continue;
        if (const char *one = away < 0 ? unit.lastOne : unit.nextOne; count == 1 && one)
            return QString::fromLatin1(one);
        const QString amount = QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(unit.name),
                                                                        QLatin1String(count == 1 ? "" : "s"));
        return away < 0 ? amount + QStringLiteral(" ago") : QStringLiteral("in ") + amount;
    }
    return QStringLiteral("now");
}

} // namespace pavonel
