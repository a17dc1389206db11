#pragma once

#include "Core/BreakController.h"
#include "Platform/StatusPublisher.h"

namespace pavonel {

/// What the scheduler is about at this moment.
Status statusOf(const BreakController &controller, const Stats &stats, const MainLoop &loop);

/// The scheduler as other programs see it and command it, who may do what the menu lets the user do. Looks
/// within a second of anything that happens whether there is something to tell them.
class BreakRemoteControl final : public RemoteControl {
public:
    /// Everything given must outlive this.
    BreakRemoteControl(StatusPublisher &publisher, BreakController &controller, const Settings &settings,
                       const Stats &stats, MainLoop &loop);
    ~BreakRemoteControl() override;

    /// What may be asked for in seconds is from 1 to this.
    static constexpr qint64 longestWish = 7 * 86400;

    Status status() const override;
    Outcome takeMicroBreak() override;
    Outcome takeLongBreak() override;
    Outcome skip() override;
    Outcome postpone(qint64 seconds) override;
    Outcome pause(std::optional<qint64> seconds) override;
    Outcome resume() override;

private:
    Outcome take(BreakKind kind);
    void tellIfChanged();

    StatusPublisher &publisher_;
    BreakController &controller_;
    const Settings &settings_;
    const Stats &stats_;
    MainLoop &loop_;
    Status::Facts told_;
    TimerHandle polling_;
};

} // namespace pavonel
