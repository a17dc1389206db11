#pragma once

#include "Core/BreakVocabulary.h"
#include "Platform/SensorServices.h"

namespace pavonel {

class Settings;

/// Says how long the user has been away and whether something holds the timer. Keeps no state: every question
/// is asked afresh, and a question whose switch is off is not asked at all.
class ActivityMonitor {
public:
    explicit ActivityMonitor(const SensorServices &sensors) : sensors_(sensors) {}

    /// Since the last keyboard or pointer event; 0 when it cannot be read.
    Seconds idleSeconds() const;

    /// The first condition that holds, in the order of what weighs most: a call, sharing, fullscreen, sound,
    /// a focus application. Absent when nothing holds the timer.
    std::optional<PauseReason> currentPauseReason(const Settings &settings) const;

    /// Whether there can be a condition that no event tells of.
    bool mayBeHeldUntold(const Settings &settings) const;

private:
    bool isRecordingAppActive() const;
    bool isFrontmostFullscreen() const;
    bool isFocusAppInFront(const Settings &settings) const;

    SensorServices sensors_;
};

} // namespace pavonel
