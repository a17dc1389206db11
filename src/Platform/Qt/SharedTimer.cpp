#include "Platform/Qt/SharedTimer.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace pavonel {

SharedTimer::SharedTimer(std::chrono::milliseconds interval) : interval_(interval) {
    // A beat of seconds may give way a little, so that one wake-up serves several; a short one is motion.
    const bool isMotion = interval < std::chrono::seconds(1);
    timer_.start(static_cast<int>(interval.count()), isMotion ? Qt::PreciseTimer : Qt::CoarseTimer, this);
}

void SharedTimer::add(const std::shared_ptr<Beat> &beat) {
    catchUp();
    beats_.push_back(beat);
    patience_ = 0;
}

/// Whoever the event is for may read or change what the waiting beats are about.
bool SharedTimer::eventFilter(QObject *watched, QEvent *) {
    if (watched == this)
        return false;
    patience_ = 0;
    if (waiting_ == 0)
        return false;
    const QPointer<QObject> receiver = watched;
    catchUp();
    return receiver.isNull();
}

/// An action may end any of the timers, begin others, and run a loop within this one; Qt lets no timer beat
/// within its own beat.
void SharedTimer::timerEvent(QTimerEvent *) {
    const WallTime now = std::chrono::system_clock::now();
    const bool waits = canWait(now);
    last_ = now;
    if (waits) {
        ++waiting_;
        return;
    }
    const auto alive = shared_from_this();
    catchUp();
    run();
}

/// Whoever compares with the wall clock has to see at once that it was set.
bool SharedTimer::canWait(WallTime now) const {
    if (waiting_ >= patience_ || std::chrono::abs(now - last_ - interval_) > interval_ / 2)
        return false;
    return std::none_of(beats_.begin(), beats_.end(), [](const auto &known) {
        const auto beat = known.lock();
        return beat && beat->isUrgent && beat->isUrgent();
    });
}

void SharedTimer::catchUp() {
    const int beats = std::exchange(waiting_, 0);
    if (beats == 0)
        return;
    const auto alive = shared_from_this();
    forEach([beats](const Beat &beat) {
        if (beat.catchUp)
            beat.catchUp(beats);
    });
}

void SharedTimer::run() {
    if (std::exchange(hasEnded_, false))
        std::erase_if(beats_, [](const auto &beat) { return beat.expired(); });
    patience_ = mostWaiting;
    forEach([this](const Beat &beat) { patience_ = std::min(patience_, beat.action()); });
    if (patience_ > 0 && !std::exchange(isFilter_, true))
        QCoreApplication::instance()->installEventFilter(this);
}

/// Others can come and go meanwhile.
template <class Use> void SharedTimer::forEach(Use use) {
    for (std::size_t i = 0, count = beats_.size(); i < count; ++i) {
        if (const auto beat = beats_[i].lock())
            use(*beat);
    }
}

} // namespace pavonel
