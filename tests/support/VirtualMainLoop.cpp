#include "support/VirtualMainLoop.h"

#include <QDateTime>

namespace pavonel::test {

class VirtualMainLoop::VirtualTimer final : public Timer {
public:
    VirtualTimer(VirtualMainLoop &loop, TimerId id) : loop_(loop), id_(id) {}
    ~VirtualTimer() override { loop_.deadlines_.erase(id_); }

private:
    VirtualMainLoop &loop_;
    TimerId id_;
};

VirtualMainLoop::VirtualMainLoop(const QByteArray &zoneId) : zone_(zoneId) {
    setClock(QStringLiteral("2026-03-02T09:00"));
}

Instant VirtualMainLoop::at(const QString &isoLocal) const {
    QDateTime local = QDateTime::fromString(isoLocal, Qt::ISODate);
    Q_ASSERT(local.isValid());
    local.setTimeZone(zone_);
    return Instant{std::chrono::milliseconds(local.toMSecsSinceEpoch())};
}

void VirtualMainLoop::setClock(Instant now) {
    clockAtStart_ = now + -elapsed_;
}

void VirtualMainLoop::setClock(const QString &isoLocal) {
    setClock(at(isoLocal));
}

void VirtualMainLoop::setZone(const QByteArray &zoneId) {
    zone_ = QTimeZone(zoneId);
}

Instant VirtualMainLoop::now() const {
    ++clockReads;
    return clockAtStart_ + elapsed_;
}

void VirtualMainLoop::advance(Seconds seconds) {
    const Seconds until = elapsed_ + seconds;
    runPosted();
    while (runNextDue(until))
        runPosted();
    elapsed_ = until;
}

bool VirtualMainLoop::runNextDue(Seconds until) {
    auto next = deadlines_.end();
    for (auto it = deadlines_.begin(); it != deadlines_.end(); ++it) {
        if (next == deadlines_.end() || it->second.due < next->second.due)
            next = it;
    }
    constexpr Seconds roundingError = 1e-6; // of tenths and thirtieths added up
    if (next == deadlines_.end() || next->second.due > until + roundingError)
        return false;
    Deadline &deadline = next->second;
    elapsed_ = std::max(elapsed_, std::min(deadline.due, until));
    const Action action = deadline.action; // it may end its own timer
    if (deadline.interval > 0)
        deadline.due += deadline.interval;
    else
        deadlines_.erase(next);
    action();
    return true;
}

void VirtualMainLoop::runPosted() {
    while (const Action action = takePosted())
        action();
}

MainLoop::Action VirtualMainLoop::takePosted() {
    const std::scoped_lock lock(postedGuard_);
    if (posted_.empty())
        return {};
    Action action = std::move(posted_.front());
    posted_.pop_front();
    return action;
}

TimerHandle VirtualMainLoop::add(Seconds delay, Seconds interval, Action action) {
    const TimerId id = ++lastId_;
    deadlines_.emplace(id, Deadline{elapsed_ + delay, interval, std::move(action)});
    return std::make_unique<VirtualTimer>(*this, id);
}

TimerHandle VirtualMainLoop::every(Seconds interval, Action action) {
    return add(interval, interval, std::move(action));
}

TimerHandle VirtualMainLoop::everyDeferrable(Seconds interval, Deferrable deferrable) {
    if (!beatsWait)
        return MainLoop::everyDeferrable(interval, std::move(deferrable));
    struct State {
        Deferrable timer;
        int patience = 0;
        int waiting = 0;
    };
    return every(interval, [state = std::make_shared<State>(State{std::move(deferrable)})] {
        auto &[timer, patience, waiting] = *state;
        if (waiting < patience && !(timer.isUrgent && timer.isUrgent())) {
            ++waiting;
            return;
        }
        if (waiting > 0 && timer.catchUp)
            timer.catchUp(waiting);
        waiting = 0;
        patience = timer.action();
    });
}

TimerHandle VirtualMainLoop::after(Seconds delay, Action action) {
    return add(delay, 0, std::move(action));
}

void VirtualMainLoop::post(Action action) {
    const std::scoped_lock lock(postedGuard_);
    posted_.push_back(std::move(action));
}

} // namespace pavonel::test
