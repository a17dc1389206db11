#pragma once

#include "Platform/Time.h"

#include <QString>
#include <QUuid>

#include <array>
#include <optional>

namespace pavonel {

enum class BreakKind { micro, long_, planned };

/// "micro", "long" or "planned": what other programs and services call it.
QString name(BreakKind kind);

/// The title of a break that is started without one.
QString defaultTitle(BreakKind kind);

enum class Phase {
    counting, ///< Screen time is being counted.
    headsUp,  ///< The next break is close and its notice has been raised.
    breaking, ///< A break runs.
    paused    ///< The user paused the timer, for a time or indefinitely.
};

/// Why the environment holds the timer; not to be confused with the user's own pause, `Phase::paused`.
enum class PauseReason { fullscreen, audio, microphone, screenSharing, deepFocus };

inline constexpr std::array allPauseReasons{PauseReason::fullscreen, PauseReason::audio,
                                            PauseReason::microphone, PauseReason::screenSharing,
                                            PauseReason::deepFocus};

/// The text form, which is also the label that the user sees.
QString rawValue(PauseReason reason);

/// Exact match of the whole text form; any other text yields nothing.
std::optional<PauseReason> pauseReason(const QString &rawValue);

/// The break that comes next.
struct NextBreak {
    BreakKind kind = BreakKind::micro;
    QString title;
    Seconds remaining = 0;          ///< Until it is due; never negative.
    std::optional<QUuid> plannedID; ///< Of the planned record; present only for `BreakKind::planned`.

    bool operator==(const NextBreak &) const = default;
};

/// "1:15", "1:02:05". Rounds to whole seconds first, halves away from zero. A value that is not finite or
/// does not fit 64 bits is a programming fault and aborts, here and in `humanString`.
QString clockString(Seconds duration);

/// "45s", "1m", "1h 1m". Rounds to whole seconds first; lesser units are dropped, not rounded.
QString humanString(Seconds duration);

} // namespace pavonel
