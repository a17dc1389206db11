#pragma once

#include "Core/LocalDay.h"
#include "Core/PlannedBreak.h"

#include <QHash>

#include <optional>

namespace pavonel {

/// An occurrence of a planned break that is to come, or that is due.
struct PlannedOccurrence {
    PlannedBreak record;
    Instant fires; ///< When it is due, a postponement included.
};

/// Finds when planned breaks fall due, and remembers which occurrences are done or put off. That memory lasts
/// as long as the program.
class PlannedSchedule {
public:
    /// An occurrence that could not start this many seconds after its time is dropped for its day.
    static constexpr Seconds tooLate = 1200;

    /// The occurrence that comes first; of two that come at once, that of the earlier record in the list.
    std::optional<PlannedOccurrence> upcoming(const PlannedBreaks &breaks, Instant now,
                                              const LocalDay &today) const;

    /// The occurrence that fires at `fires` was taken or skipped: the record is done for that day.
    void markHandled(const QUuid &record, Instant fires);

    /// The record fires no earlier than `until`.
    void defer(const QUuid &record, Instant until);

private:
    QHash<QUuid, Instant> plannedHandled_;
    QHash<QUuid, Instant> plannedDeferred_;
};

} // namespace pavonel
