#pragma once

#include "Platform/Time.h"

#include <QByteArray>
#include <QString>
#include <QUuid>

#include <optional>
#include <set>
#include <vector>

namespace pavonel {

/// A break at a fixed time of day on chosen weekdays, such as a lunch pause. No range is enforced here: a
/// time that no clock shows, or no weekday at all, makes a break that never occurs.
struct PlannedBreak {
    QUuid id = QUuid::createUuid(); ///< Stable across edits.
    QString label = QStringLiteral("Lunch");
    int hour = 12;
    int minute = 30;
    Seconds duration = 1800;
    std::set<int> weekdays{2, 3, 4, 5, 6}; ///< 1 is Sunday, 7 is Saturday.
    bool enabled = true;

    bool operator==(const PlannedBreak &) const = default;
};

using PlannedBreaks = std::vector<PlannedBreak>;

/// A JSON array with one object a record, its members named like the fields. Absent where a duration has no
/// form in JSON (it is not finite).
std::optional<QByteArray> encodePlannedBreaks(const PlannedBreaks &breaks);

/// Strict: a missing or mistyped member in any record makes the whole array undecodable. Members that we do
/// not know are ignored.
std::optional<PlannedBreaks> decodePlannedBreaks(const QByteArray &json);

} // namespace pavonel
