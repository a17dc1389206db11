#pragma once

#include "Core/ActivityMonitor.h"
#include "Core/BreakRelay.h"
#include "Core/BreakVocabulary.h"
#include "Core/Observable.h"
#include "Core/PlannedSchedule.h"
#include "Core/Settings.h"
#include "Core/Stats.h"

#include <functional>
#include <optional>

namespace pavonel {

class ProcessLauncher;
class Sounds;

/// The scheduler. One tick a second counts screen time, decides which break comes next and when, and leads
/// each break from its heads-up to its end. What does not apply in the current phase does nothing.
class BreakController final : public Observable {
public:
    struct Services {
        MainLoop &loop;
        SensorServices sensors;
        ProcessLauncher &processes;
        Sounds &sounds;
    };

    /// `relay` may be null; everything given must outlive the controller.
    BreakController(const Services &services, Settings &settings, Stats &stats, BreakRelay *relay = nullptr);

    Published<Phase> phase{*this, Phase::counting};
    Published<std::optional<PauseReason>> pauseReason{
        *this, std::nullopt};                  ///< Absent while nothing holds the timer.
    Published<Seconds> microElapsed{*this, 0}; ///< Screen time towards the next micro break.
    Published<Seconds> longElapsed{*this, 0};
    Published<std::optional<BreakKind>> currentBreak{*this, std::nullopt};
    Published<Seconds> breakRemaining{*this, 0};
    Published<Seconds> breakTotal{*this, 1}; ///< One, so that nobody divides by zero before the first break.
    Published<QString> breakMessage{*this, {}};
    Published<QString> breakTitle{*this, {}};
    Published<std::optional<Instant>> pauseUntil{*this,
                                                 std::nullopt}; ///< Absent: not paused, or indefinitely.

    std::function<void(BreakKind)> onBreakStart;
    std::function<void()> onBreakEnd;
    std::function<void(BreakKind, const QString &title)> onHeadsUp;
    std::function<void()> onHeadsUpDismiss;
    std::function<void(const QString &message, const QString &iconName)> onWellness;

    /// Starts the one-second timer, in place of one that runs.
    void start();

    /// As of the last tick that looked: long enough to count as a rest, so that nothing is counted.
    bool isUserAway() const { return away_; }

    /// The coming break; absent when nothing is scheduled.
    std::optional<NextBreak> next() const;

    enum class Initiator { schedule, user };

    /// Absent, `duration` and `title` default by kind. Who starts a break makes no difference to how it runs.
    void startBreak(BreakKind kind, Initiator initiator, std::optional<Seconds> duration = {},
                    const std::optional<QString> &title = {});

    enum class Ending { completed, cutShort };
    void endBreak(Ending ending);

    /// Cuts the running break short, or passes over the coming one.
    void skip();
    void postpone(Seconds by);

    /// Without seconds, until the user resumes.
    void pause(std::optional<Seconds> forSeconds = {});
    void resume();
    void togglePause();

    /// Counts towards both breaks from the beginning, and withdraws a raised heads-up.
    void resetTimers();

    /// Withdraws a raised heads-up.
    void dismissHeadsUp();

private:
    int tick();
    int quietTicks(Instant now, const std::optional<NextBreak> &coming) const;
    void countQuietTicks(int ticks);
    void tickBreak(Instant now);
    bool isAway();
    bool isHeld();
    bool startDuePlannedBreak(Instant now);
    void countScreenSecond(Instant now);
    void tickWellness();
    void remind(bool enabled, Seconds interval, Seconds &pending, const QString &message,
                const QString &icon);
    void startOrAnnounce(const NextBreak &coming);
    std::optional<NextBreak> next(Instant now) const;
    void endBreak(Ending ending, Instant now);
    void playSound(const QString &name);
    void countSkipped(Instant now);
    const std::optional<PlannedOccurrence> &upcomingPlanned(Instant now) const;

    /// The answer of `PlannedSchedule::upcoming`, which changes only when its inputs do, when the day does,
    /// or when the occurrence is too late.
    struct PlannedAnswer {
        std::optional<PlannedOccurrence> occurrence;
        LocalDay today;
        unsigned recordsVersion = 0;
        Instant validFrom;
        Instant validUntil;
    };

    MainLoop &loop_;
    ProcessLauncher &processes_;
    Sounds &sounds_;
    Settings &s_;
    Stats &stats_;
    BreakRelay *relay_;
    ActivityMonitor monitor_;
    Today today_;
    TimerHandle timer_;
    bool headsUpShown_ = false;
    Seconds idle_ = 0; ///< As of the last tick that looked, like the next.
    bool away_ = false;
    Seconds posturePending_ = 0;
    Seconds blinkPending_ = 0;
    PlannedSchedule planned_;
    mutable std::optional<PlannedAnswer> plannedAnswer_;
};

} // namespace pavonel
