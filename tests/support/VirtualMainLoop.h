#pragma once

#include "Platform/MainLoop.h"

#include <deque>
#include <map>
#include <mutex>
#include <vector>

namespace pavonel::test {

/// Time that passes only when a test says so, from deadline to deadline. The wall clock can be set without
/// moving the timers.
class VirtualMainLoop final : public MainLoop {
public:
    /// Monday, 2 March 2026, 09:00 in the zone.
    explicit VirtualMainLoop(const QByteArray &zoneId = "UTC");

    /// Lets this many seconds pass; everything due runs in order, posted actions at once.
    void advance(Seconds seconds);

    /// Sets the wall clock; time that passed and the timers stay as they are.
    void setClock(Instant now);
    void setClock(const QString &isoLocal);
    void setZone(const QByteArray &zoneId);

    /// The instant that a local clock time names, as "2026-03-09T12:00".
    Instant at(const QString &isoLocal) const;

    std::size_t timerCount() const { return deadlines_.size(); }

    Instant now() const override;
    mutable int clockReads = 0; ///< How often `now` was asked for.
    QTimeZone zone() const override { return zone_; }
    TimerHandle every(Seconds interval, Action action) override;
    TimerHandle everyDeferrable(Seconds interval, Deferrable deferrable) override;
    TimerHandle after(Seconds delay, Action action) override;
    void post(Action action) override;
    void quit(int status) override { quits.push_back(status); }

    /// Timers made from now on let as many of their beats wait as they say they can; nothing else than the
    /// next beat makes up for them.
    bool beatsWait = false;

    std::vector<int> quits; ///< The exit statuses with which it was asked to end; it goes on, for the test.

private:
    class VirtualTimer;
    struct Deadline {
        Seconds due;
        Seconds interval; ///< 0 for a one-shot.
        Action action;
    };
    using TimerId = unsigned;

    TimerHandle add(Seconds delay, Seconds interval, Action action);
    void runPosted();
    Action takePosted(); ///< Empty when nothing is left.
    bool runNextDue(Seconds until);

    QTimeZone zone_;
    Instant clockAtStart_;
    Seconds elapsed_ = 0;
    TimerId lastId_ = 0;
    std::map<TimerId, Deadline> deadlines_; ///< In the order of their making, which breaks ties.
    std::mutex postedGuard_;                ///< Posting is allowed on any thread.
    std::deque<Action> posted_;
};

} // namespace pavonel::test
