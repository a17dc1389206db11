#include "Core/BreakController.h"

#include "Core/SystemBits.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/Sounds.h"

#include <QRandomGenerator>

#include <algorithm>

namespace pavonel {

namespace {

constexpr Seconds oneTick = 1.0;

/// No wish reaches further; a number from a damaged store may, and the duration texts could not show it.
constexpr Seconds longest = 1e15;

int &counterOf(Day &day, BreakKind kind) {
    switch (kind) {
    case BreakKind::micro:
        return day.micro;
    case BreakKind::long_:
        return day.long_;
    case BreakKind::planned:
        break;
    }
    return day.planned;
}

QString anyOf(const QStringList &messages) {
    if (messages.isEmpty())
        return QStringLiteral("Look away from the screen.");
    return messages[QRandomGenerator::global()->bounded(static_cast<int>(messages.size()))];
}

} // namespace

BreakController::BreakController(const Services &services, Settings &settings, Stats &stats,
                                 BreakRelay *relay)
    : loop_(services.loop), processes_(services.processes), sounds_(services.sounds), s_(settings),
      stats_(stats), relay_(relay), monitor_(services.sensors), today_(loop_) {}

void BreakController::start() {
    timer_ = loop_.everyDeferrable(oneTick, {.action = [this] { return tick(); },
                                             .catchUp = [this](int ticks) { countQuietTicks(ticks); },
                                             .isUrgent = [this] { return monitor_.mayBeHeldUntold(s_); }});
}

/// Yields how many of the next ticks will only count, unless something happens.
int BreakController::tick() {
    const Instant now = loop_.now();
    if (phase == Phase::breaking) {
        tickBreak(now);
        return 0;
    }
    if (phase == Phase::paused) {
        if (pauseUntil.get() && now >= *pauseUntil.get())
            resume();
        return 0;
    }
    if (isAway() || isHeld() || startDuePlannedBreak(now))
        return 0;
    countScreenSecond(now);
    tickWellness();
    const auto coming = next(now);
    if (coming)
        startOrAnnounce(*coming);
    return phase == Phase::counting ? quietTicks(now, coming) : 0;
}

/// None of them starts a break, announces one, reminds of anything, finds the user away or begins a day.
int BreakController::quietTicks(Instant now, const std::optional<NextBreak> &coming) const {
    Seconds quiet = secondsBetween(now, today_.day(now).end);
    const auto endWithin = [&quiet](Seconds left) { quiet = std::min(quiet, left); };
    if (coming)
        endWithin(coming->remaining - s_.preNotifySeconds);
    if (s_.naturalBreakEnabled)
        endWithin(s_.idleResetSeconds - idle_);
    if (s_.postureEnabled)
        endWithin(s_.postureInterval - posturePending_);
    if (s_.blinkEnabled)
        endWithin(s_.blinkInterval - blinkPending_);
    return quiet > oneTick ? static_cast<int>(quiet) - 1 : 0;
}

void BreakController::countQuietTicks(int ticks) {
    for (const Instant now = loop_.now(); ticks > 0; --ticks) {
        countScreenSecond(now);
        tickWellness();
    }
}

void BreakController::tickBreak(Instant now) {
    breakRemaining = breakRemaining - oneTick;
    stats_.change(now, [](Day &day) { day.breakSeconds += oneTick; });
    if (breakRemaining <= 0)
        endBreak(Ending::completed, now);
}

/// An idle spell is a rest of its own. It resets a counter only once it has lasted as long as the break that
/// it stands in for; until then nothing is counted.
bool BreakController::isAway() {
    idle_ = s_.naturalBreakEnabled ? monitor_.idleSeconds() : 0;
    const bool wasAway = std::exchange(away_, s_.naturalBreakEnabled && idle_ >= s_.idleResetSeconds);
    if (!away_)
        return false;
    if (idle_ >= s_.longDuration && s_.longEnabled) {
        longElapsed = 0;
        microElapsed = 0;
    } else if (idle_ >= s_.microDuration) {
        microElapsed = 0;
    }
    dismissHeadsUp();
    if (!wasAway)
        stats_.save(); // nobody is working: a good moment to wake the disk
    return true;
}

bool BreakController::isHeld() {
    const auto reason = monitor_.currentPauseReason(s_);
    if (reason != pauseReason.get())
        pauseReason = reason;
    if (reason)
        dismissHeadsUp();
    return reason.has_value();
}

bool BreakController::startDuePlannedBreak(Instant now) {
    const auto &coming = upcomingPlanned(now);
    if (!coming || coming->fires > now)
        return false;
    const PlannedOccurrence due = *coming;
    planned_.markHandled(due.record.id, due.fires);
    plannedAnswer_.reset();
    startBreak(BreakKind::planned, Initiator::schedule, due.record.duration, due.record.label);
    return true;
}

void BreakController::countScreenSecond(Instant now) {
    microElapsed = microElapsed + oneTick;
    longElapsed = longElapsed + oneTick;
    stats_.change(now, [](Day &day) { day.screenSeconds += oneTick; });
}

void BreakController::tickWellness() {
    remind(s_.postureEnabled, s_.postureInterval, posturePending_,
           QStringLiteral("Check your posture — shoulders back, screen at eye level."),
           QStringLiteral("figure.stand"));
    remind(s_.blinkEnabled, s_.blinkInterval, blinkPending_, QStringLiteral("Blink slowly a few times."),
           QStringLiteral("eye"));
}

void BreakController::remind(bool enabled, Seconds interval, Seconds &pending, const QString &message,
                             const QString &icon) {
    if (!enabled)
        return;
    pending += oneTick;
    if (pending < interval)
        return;
    pending = 0;
    if (onWellness)
        onWellness(message, icon);
}

void BreakController::startOrAnnounce(const NextBreak &coming) {
    if (coming.remaining <= 0) {
        startBreak(coming.kind, Initiator::schedule);
    } else if (!headsUpShown_ && coming.remaining <= s_.preNotifySeconds) {
        headsUpShown_ = true;
        phase = Phase::headsUp;
        if (onHeadsUp)
            onHeadsUp(coming.kind, coming.title);
    }
}

std::optional<NextBreak> BreakController::next() const {
    return next(loop_.now());
}

std::optional<NextBreak> BreakController::next(Instant now) const {
    std::optional<NextBreak> soonest;
    // On equal times the earlier candidate stays: micro before long, both before planned.
    const auto consider = [&soonest](NextBreak candidate) {
        candidate.remaining = std::clamp(candidate.remaining, 0.0, longest);
        if (!soonest || candidate.remaining < soonest->remaining)
            soonest = std::move(candidate);
    };
    if (s_.microEnabled)
        consider({BreakKind::micro, defaultTitle(BreakKind::micro), s_.microInterval - microElapsed, {}});
    if (s_.longEnabled)
        consider({BreakKind::long_, defaultTitle(BreakKind::long_), s_.longInterval - longElapsed, {}});
    if (const auto &planned = upcomingPlanned(now)) {
        consider({BreakKind::planned, planned->record.label, secondsBetween(now, planned->fires),
                  planned->record.id});
    }
    return soonest;
}

void BreakController::startBreak(BreakKind kind, Initiator, std::optional<Seconds> duration,
                                 const std::optional<QString> &title) {
    if (phase == Phase::breaking)
        return;
    dismissHeadsUp();
    pauseUntil = std::nullopt; // a break taken during a pause ends it
    currentBreak = kind;
    breakTitle = title.value_or(defaultTitle(kind));
    const Seconds length = duration.value_or(kind == BreakKind::micro ? s_.microDuration : s_.longDuration);
    breakTotal = std::clamp(length, -longest, longest);
    breakRemaining = breakTotal.get();
    breakMessage = anyOf(s_.messages);
    phase = Phase::breaking;
    playSound(s_.startSound);
    Automation::run(processes_, s_.onBreakStartScript);
    if (relay_)
        relay_->breakStarted(kind, breakTitle, breakTotal);
    if (onBreakStart)
        onBreakStart(kind);
}

void BreakController::endBreak(Ending ending) {
    endBreak(ending, loop_.now());
}

void BreakController::endBreak(Ending ending, Instant now) {
    if (phase != Phase::breaking || !currentBreak.get())
        return;
    const BreakKind kind = *currentBreak.get();
    if (ending == Ending::completed) {
        stats_.change(now, [kind](Day &day) { ++counterOf(day, kind); });
        stats_.save(); // breaks are few: unlike the seconds, none is lost with a program that is killed
        playSound(s_.endSound);
    } else {
        countSkipped(now);
    }
    Automation::run(processes_, s_.onBreakEndScript);
    if (relay_)
        relay_->breakEnded();
    microElapsed = 0;
    if (kind != BreakKind::micro)
        longElapsed = 0;
    currentBreak = std::nullopt;
    phase = Phase::counting;
    if (onBreakEnd)
        onBreakEnd();
}

void BreakController::skip() {
    if (s_.strictMode)
        return;
    const Instant now = loop_.now();
    if (phase == Phase::breaking) {
        endBreak(Ending::cutShort, now);
        return;
    }
    const auto coming = s_.isSkipPermitted() ? next(now) : std::nullopt;
    if (!coming)
        return;
    countSkipped(now);
    switch (coming->kind) {
    case BreakKind::micro:
        microElapsed = 0;
        break;
    case BreakKind::long_:
        longElapsed = 0;
        microElapsed = 0;
        break;
    case BreakKind::planned:
        if (const auto planned = upcomingPlanned(now)) {
            planned_.markHandled(planned->record.id, planned->fires);
            plannedAnswer_.reset();
        }
        break;
    }
    dismissHeadsUp();
}

void BreakController::postpone(Seconds by) {
    const Instant now = loop_.now();
    const auto coming = s_.isPostponePermitted() ? next(now) : std::nullopt;
    if (!coming)
        return;
    switch (coming->kind) {
    case BreakKind::micro:
        microElapsed = std::max(0.0, microElapsed - by);
        break;
    case BreakKind::long_:
        longElapsed = std::max(0.0, longElapsed - by);
        break;
    case BreakKind::planned:
        planned_.defer(*coming->plannedID, now + by);
        plannedAnswer_.reset();
        break;
    }
    dismissHeadsUp();
}

void BreakController::pause(std::optional<Seconds> forSeconds) {
    const Instant now = loop_.now();
    if (phase == Phase::breaking)
        endBreak(Ending::cutShort, now);
    dismissHeadsUp();
    pauseUntil = forSeconds ? std::optional(now + *forSeconds) : std::nullopt;
    phase = Phase::paused;
}

void BreakController::resume() {
    if (phase != Phase::paused)
        return;
    pauseUntil = std::nullopt;
    phase = Phase::counting;
}

void BreakController::togglePause() {
    if (phase == Phase::paused)
        resume();
    else
        pause();
}

void BreakController::resetTimers() {
    microElapsed = 0;
    longElapsed = 0;
    dismissHeadsUp();
}

void BreakController::dismissHeadsUp() {
    if (!headsUpShown_ && phase != Phase::headsUp)
        return;
    headsUpShown_ = false;
    if (phase == Phase::headsUp)
        phase = Phase::counting;
    if (onHeadsUpDismiss)
        onHeadsUpDismiss();
}

void BreakController::playSound(const QString &name) {
    if (s_.soundEnabled)
        SoundPlayer::play(sounds_, name);
}

void BreakController::countSkipped(Instant now) {
    stats_.change(now, [](Day &day) { ++day.skipped; });
    stats_.save();
}

const std::optional<PlannedOccurrence> &BreakController::upcomingPlanned(Instant now) const {
    const LocalDay &today = today_.day(now);
    const bool fresh = plannedAnswer_ && plannedAnswer_->recordsVersion == s_.plannedBreaks.version() &&
                       plannedAnswer_->today.begin == today.begin &&
                       plannedAnswer_->today.zone == today.zone && plannedAnswer_->validFrom <= now &&
                       now <= plannedAnswer_->validUntil;
    if (!fresh) {
        auto occurrence = planned_.upcoming(s_.plannedBreaks, now, today);
        const Instant validUntil = occurrence ? occurrence->fires + PlannedSchedule::tooLate : today.end;
        plannedAnswer_ =
            PlannedAnswer{std::move(occurrence), today, s_.plannedBreaks.version(), now, validUntil};
    }
    return plannedAnswer_->occurrence;
}

} // namespace pavonel
