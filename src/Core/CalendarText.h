#pragma once

#include <QString>

#include <vector>

/// Hours and weekdays as the user's clock and calendar have them.
namespace pavonel {

/// "9" as people write it: "09", or "9 AM" where the clock has twelve hours.
QString hourText(int hour);
QString minuteText(int minute);

/// All seven, from the first day of the user's week on. 1 is Sunday, 7 is Saturday.
std::vector<int> weekdaysInOrder();

/// In English, as all texts are.
QString weekdayName(int weekday);

/// The same of an abbreviated one, such as "Mon"; what is none stays as it is.
QString weekdayOf(const QString &abbreviation);

} // namespace pavonel
