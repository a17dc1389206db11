#pragma once

#include "Core/PlannedBreak.h"

#include <QStringList>

#include <functional>

namespace pavonel {

/// What tells the records of a list apart, one for each: their identities, also where a damaged store holds
/// one twice.
QStringList plannedKeys(const PlannedBreaks &breaks);

/// The record of a key; null when it is gone.
const PlannedBreak *plannedBreak(const PlannedBreaks &breaks, const QString &key);

/// The list with that record changed, all else as it is; as it was when the record is gone.
PlannedBreaks edited(PlannedBreaks breaks, const QString &key,
                     const std::function<void(PlannedBreak &)> &edit);
PlannedBreaks without(PlannedBreaks breaks, const QString &key);

/// "2 active".
QString activeText(const PlannedBreaks &breaks);

/// "9" as people write it: "09", or "9 AM" where the clock has twelve hours.
QString hourText(int hour);
QString minuteText(int minute);

} // namespace pavonel
