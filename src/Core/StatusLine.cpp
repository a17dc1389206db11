#include "Core/StatusLine.h"

#include "Core/ClockText.h"

#include <QDateTime>
#include <QLocale>

namespace pavonel {

namespace {

QString timeOfDay(Instant instant, const QTimeZone &zone) {
    const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(instant).time_since_epoch();
    const auto local = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count(), zone);
    return QLocale().toString(local.time(), QLocale::ShortFormat);
}

} // namespace

QString statusLine(const BreakController &controller, const MainLoop &loop) {
    if (controller.phase == Phase::breaking)
        return QStringLiteral("On break · ") + clockText(controller.breakRemaining);
    if (controller.phase == Phase::paused) {
        const auto &until = controller.pauseUntil.get();
        return until ? QStringLiteral("Paused until ") + timeOfDay(*until, loop.zone())
                     : QStringLiteral("Paused");
    }
    if (const auto &reason = controller.pauseReason.get())
        return QStringLiteral("Waiting · ") + rawValue(*reason);
    if (const auto next = controller.next())
        return next->title + QStringLiteral(": ") + clockText(next->remaining);
    return QStringLiteral("No break scheduled");
}

} // namespace pavonel
