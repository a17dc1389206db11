#include "Core/BreakRemoteControl.h"

#include "Core/ClockText.h"
#include "Core/StatusLine.h"

#include <cmath>
#include <cstdlib>

namespace pavonel {

namespace {

constexpr Seconds pollInterval = 1.0;
constexpr qint64 unsteadiness = 2;

using Facts = Status::Facts;
using Kind = Refusal::Kind;

qint64 whole(Seconds seconds) {
    return std::llround(showable(seconds));
}

qint64 whole(Instant instant) {
    return whole(instant.time_since_epoch().count());
}

QString name(Phase phase) {
    switch (phase) {
    case Phase::counting:
        return QStringLiteral("counting");
    case Phase::headsUp:
        return QStringLiteral("headsUp");
    case Phase::breaking:
        return QStringLiteral("breaking");
    case Phase::paused:
        return QStringLiteral("paused");
    }
    return {};
}

QString name(PauseReason reason) {
    switch (reason) {
    case PauseReason::fullscreen:
        return QStringLiteral("fullscreen");
    case PauseReason::audio:
        return QStringLiteral("audio");
    case PauseReason::microphone:
        return QStringLiteral("microphone");
    case PauseReason::screenSharing:
        return QStringLiteral("screenSharing");
    case PauseReason::deepFocus:
        return QStringLiteral("deepFocus");
    }
    return {};
}

/// What holds the timer is looked at only while it could count, and so not while the user is away.
QString holdOf(const BreakController &controller) {
    if (controller.phase == Phase::breaking || controller.phase == Phase::paused)
        return {};
    if (controller.isUserAway())
        return QStringLiteral("away");
    const auto &reason = controller.pauseReason.get();
    return reason ? name(*reason) : QString();
}

/// A planned break comes at its time of day, whether anything is counted or not; only when that has passed
/// does it wait like the others.
std::optional<Facts::Next> nextOf(const BreakController &controller, bool isCounting, Instant now) {
    const auto next = controller.phase == Phase::breaking ? std::nullopt : controller.next();
    if (!next)
        return {};
    Facts::Next told{name(next->kind), next->title, {}, {}};
    if (isCounting || (next->kind == BreakKind::planned && next->remaining > 0))
        told.due = whole(now + next->remaining);
    else
        told.remaining = whole(next->remaining);
    return told;
}

std::optional<Facts::Running> runningOf(const BreakController &controller, Instant now) {
    const auto &kind = controller.currentBreak.get();
    if (controller.phase != Phase::breaking || !kind)
        return {};
    return Facts::Running{name(*kind), controller.breakTitle, whole(now + controller.breakRemaining)};
}

bool isNearly(qint64 moment, qint64 other) {
    return std::abs(moment - other) < unsteadiness;
}

RemoteControl::Outcome refusal(Kind kind, const char *sentence) {
    return Refusal{kind, QString::fromUtf8(sentence)};
}

RemoteControl::Outcome refuseAbsurd(qint64 seconds) {
    if (seconds >= 1 && seconds <= BreakRemoteControl::longestWish)
        return {};
    return Refusal{Kind::badArgument,
                   QStringLiteral("The seconds must be from 1 to %1.").arg(BreakRemoteControl::longestWish)};
}

Facts factsOf(const BreakController &controller, const Stats &stats, const MainLoop &loop) {
    const Instant now = loop.now();
    const Day today = stats.on(now);
    Facts facts;
    facts.phase = name(controller.phase);
    facts.hold = holdOf(controller);
    facts.next = nextOf(controller, controller.phase != Phase::paused && facts.hold.isEmpty(), now);
    facts.running = runningOf(controller, now);
    if (controller.phase == Phase::paused && controller.pauseUntil.get())
        facts.pauseEnds = whole(*controller.pauseUntil.get());
    facts.today = {today.micro, today.long_, today.planned, today.skipped};
    return facts;
}

/// Moments that follow from the counters move by a second now and then, when a tick comes late: they stay as
/// they were told, unless they are off by two seconds or more.
void steady(Facts &facts, const Facts &told) {
    const bool sameNext = facts.next && told.next && facts.next->kind == told.next->kind;
    if (sameNext && facts.next->due && told.next->due && isNearly(*facts.next->due, *told.next->due))
        facts.next->due = told.next->due;
    if (facts.running && told.running && isNearly(facts.running->ends, told.running->ends))
        facts.running->ends = told.running->ends;
}

} // namespace

Status statusOf(const BreakController &controller, const Stats &stats, const MainLoop &loop) {
    const Day today = stats.today();
    Status status;
    status.facts = factsOf(controller, stats, loop);
    status.line = statusLine(controller, loop);
    status.screenSeconds = whole(today.screenSeconds);
    status.breakSeconds = whole(today.breakSeconds);
    return status;
}

BreakRemoteControl::BreakRemoteControl(StatusPublisher &publisher, BreakController &controller,
                                       const Settings &settings, const Stats &stats, MainLoop &loop)
    : publisher_(publisher), controller_(controller), settings_(settings), stats_(stats), loop_(loop) {
    told_ = factsOf(controller_, stats_, loop_);
    publisher_.serve(this);
    // What the facts say does not change with time alone.
    polling_ = loop_.everyDeferrable(pollInterval, {[this] {
                                         tellIfChanged();
                                         return MainLoop::unlimited;
                                     }});
}

BreakRemoteControl::~BreakRemoteControl() {
    publisher_.serve(nullptr);
}

Status BreakRemoteControl::status() const {
    Status status = statusOf(controller_, stats_, loop_);
    steady(status.facts, told_);
    return status;
}

void BreakRemoteControl::tellIfChanged() {
    Facts facts = factsOf(controller_, stats_, loop_);
    steady(facts, told_);
    if (facts == told_)
        return;
    told_ = std::move(facts);
    publisher_.tellChange();
}

RemoteControl::Outcome BreakRemoteControl::take(BreakKind kind) {
    if (controller_.phase == Phase::breaking)
        return refusal(Kind::notNow, "A break is running.");
    controller_.startBreak(kind, BreakController::Initiator::user);
    tellIfChanged();
    return {};
}

RemoteControl::Outcome BreakRemoteControl::takeMicroBreak() {
    return take(BreakKind::micro);
}

RemoteControl::Outcome BreakRemoteControl::takeLongBreak() {
    return take(BreakKind::long_);
}

RemoteControl::Outcome BreakRemoteControl::skip() {
    if (!settings_.isSkipPermitted())
        return refusal(Kind::notNow, "The settings do not let breaks be skipped.");
    if (controller_.phase != Phase::breaking && !controller_.next())
        return refusal(Kind::notNow, "No break is scheduled.");
    controller_.skip();
    tellIfChanged();
    return {};
}

RemoteControl::Outcome BreakRemoteControl::postpone(qint64 seconds) {
    if (auto absurd = refuseAbsurd(seconds))
        return absurd;
    if (!settings_.isPostponePermitted())
        return refusal(Kind::notNow, "The settings do not let breaks be postponed.");
    if (controller_.phase == Phase::breaking)
        return refusal(Kind::notNow, "A break is running.");
    if (!controller_.next())
        return refusal(Kind::notNow, "No break is scheduled.");
    controller_.postpone(static_cast<Seconds>(seconds));
    tellIfChanged();
    return {};
}

RemoteControl::Outcome BreakRemoteControl::pause(std::optional<qint64> seconds) {
    if (auto absurd = seconds ? refuseAbsurd(*seconds) : std::nullopt)
        return absurd;
    controller_.pause(seconds ? std::optional(static_cast<Seconds>(*seconds)) : std::nullopt);
    tellIfChanged();
    return {};
}

RemoteControl::Outcome BreakRemoteControl::resume() {
    if (controller_.phase != Phase::paused)
        return {};
    controller_.togglePause();
    tellIfChanged();
    return {};
}

} // namespace pavonel
