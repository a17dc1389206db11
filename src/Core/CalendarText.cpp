#include "Core/CalendarText.h"

#include <QLocale>

namespace pavonel {

QString hourText(int hour) {
    const bool twelve = QLocale().timeFormat(QLocale::ShortFormat).contains(u'a', Qt::CaseInsensitive);
    if (!twelve || hour < 0 || hour > 23)
        return QStringLiteral("%1").arg(hour, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1 %2")
        .arg(hour % 12 == 0 ? 12 : hour % 12)
        .arg(QLatin1String(hour < 12 ? "AM" : "PM"));
}

QString minuteText(int minute) {
    return QStringLiteral("%1").arg(minute, 2, 10, QLatin1Char('0'));
}

std::vector<int> weekdaysInOrder() {
    std::vector<int> days;
    int day = QLocale().firstDayOfWeek(); // Monday is 1
    for (int count = 0; count < 7; ++count, day = day % 7 + 1)
        days.push_back(day % 7 + 1);
    return days;
}

QString weekdayName(int weekday) {
    return QLocale(QLocale::English, QLocale::UnitedStates).dayName(weekday == 1 ? 7 : weekday - 1);
}

QString weekdayOf(const QString &abbreviation) {
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    for (int day = Qt::Monday; day <= Qt::Sunday; ++day) {
        if (english.dayName(day, QLocale::ShortFormat) == abbreviation)
            return english.dayName(day);
    }
    return abbreviation;
}

} // namespace pavonel
