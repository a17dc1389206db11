#pragma once

#include "Core/Stats.h"
#include "Platform/MainLoop.h"
#include "Platform/UserDefaults.h"

#include <QDate>

#include <functional>
#include <iosfwd>
#include <map>
#include <memory>

namespace pavonel::test {

/// Somebody who sits at the screen for ten hours from nine in the evening, night after night, with the
/// default settings and twenty planned breaks: midnights and the hours at which zones change their clocks are
/// worked through. Between the shifts the machine sleeps.
struct NightShifts {
    QByteArray zoneId;
    QDate first;
    int nights = 1;

    static constexpr int secondsOfShift = 10 * 3600;
};

struct ShiftTotals {
    Day sum;   ///< Of all days.
    Days kept; ///< The days that the statistics still hold at the end.
    std::map<QString, int> startedByTitle;

    bool operator==(const ShiftTotals &) const = default;
};

void PrintTo(const ShiftTotals &totals, std::ostream *out);

using StoreMaker = std::function<std::unique_ptr<UserDefaults>(MainLoop &)>;

/// What the controller does in these nights, with its settings and statistics in the store that is made for
/// it.
ShiftTotals work(const NightShifts &shifts, const StoreMaker &makeStore);

/// What it must do, told second by second by a model of a few whole numbers.
ShiftTotals expected(const NightShifts &shifts);

} // namespace pavonel::test
