#include "UI/SettingsWindow/Pages/Planned/PlannedEditing.h"

#include <QHash>
#include <QLocale>

#include <algorithm>

namespace pavonel {

QStringList plannedKeys(const PlannedBreaks &breaks) {
    QHash<QUuid, int> seen;
    QStringList keys;
    for (const PlannedBreak &planned : breaks)
        keys.append(QStringLiteral("%1 %2").arg(planned.id.toString()).arg(seen[planned.id]++));
    return keys;
}

const PlannedBreak *plannedBreak(const PlannedBreaks &breaks, const QString &key) {
    const qsizetype place = plannedKeys(breaks).indexOf(key);
    return place < 0 ? nullptr : &breaks[static_cast<std::size_t>(place)];
}

PlannedBreaks edited(PlannedBreaks breaks, const QString &key,
                     const std::function<void(PlannedBreak &)> &edit) {
    const qsizetype place = plannedKeys(breaks).indexOf(key);
    if (place >= 0)
        edit(breaks[static_cast<std::size_t>(place)]);
    return breaks;
}

PlannedBreaks without(PlannedBreaks breaks, const QString &key) {
    const qsizetype place = plannedKeys(breaks).indexOf(key);
    if (place >= 0)
        breaks.erase(breaks.begin() + place);
    return breaks;
}

QString activeText(const PlannedBreaks &breaks) {
    return QStringLiteral("%1 active").arg(std::ranges::count_if(breaks, &PlannedBreak::enabled));
}

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

} // namespace pavonel
