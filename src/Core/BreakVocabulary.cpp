#include "Core/BreakVocabulary.h"

#include <cmath>
#include <cstdlib>

namespace pavonel {

namespace {

qint64 wholeSeconds(Seconds duration) {
    const double rounded = std::round(duration);
    constexpr double limit = 9223372036854775808.0; // 2^63, the first double past the 64-bit integers
    if (!(rounded >= -limit && rounded < limit))
        std::abort();
    return static_cast<qint64>(rounded);
}

QString twoDigits(qint64 number) {
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

} // namespace

QString name(BreakKind kind) {
    switch (kind) {
    case BreakKind::micro:
        return QStringLiteral("micro");
    case BreakKind::long_:
        return QStringLiteral("long");
    case BreakKind::planned:
        return QStringLiteral("planned");
    }
    return {};
}

QString defaultTitle(BreakKind kind) {
    switch (kind) {
    case BreakKind::micro:
        return QStringLiteral("Micro break");
    case BreakKind::long_:
        return QStringLiteral("Long break");
    case BreakKind::planned:
        return QStringLiteral("Planned break");
    }
    return {};
}

QString rawValue(PauseReason reason) {
    switch (reason) {
    case PauseReason::fullscreen:
        return QStringLiteral("Fullscreen app");
    case PauseReason::audio:
        return QStringLiteral("Video or audio playing");
    case PauseReason::microphone:
        return QStringLiteral("Meeting or call");
    case PauseReason::screenSharing:
        return QStringLiteral("Screen sharing or recording");
    case PauseReason::deepFocus:
        return QStringLiteral("Focus app in front");
    }
    return {};
}

std::optional<PauseReason> pauseReason(const QString &text) {
    for (const PauseReason reason : allPauseReasons) {
        if (rawValue(reason) == text)
            return reason;
    }
    return {};
}

QString clockString(Seconds duration) {
    const qint64 total = wholeSeconds(duration);
    const qint64 hours = total / 3600;
    const qint64 minutes = total / 60 % 60;
    const QString seconds = twoDigits(total % 60);
    if (total < 3600)
        return QStringLiteral("%1:%2").arg(QString::number(total / 60), seconds);
    return QStringLiteral("%1:%2:%3").arg(QString::number(hours), twoDigits(minutes), seconds);
}

QString humanString(Seconds duration) {
    const qint64 total = wholeSeconds(duration);
    if (total < 60)
        return QStringLiteral("%1s").arg(total);
    if (total < 3600)
        return QStringLiteral("%1m").arg(total / 60);
    const QString hours = QStringLiteral("%1h").arg(total / 3600);
    const qint64 minutes = total / 60 % 60;
    return minutes == 0 ? hours : QStringLiteral("%1 %2m").arg(hours, QString::number(minutes));
}

} // namespace pavonel
