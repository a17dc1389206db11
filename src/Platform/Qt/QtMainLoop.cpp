#include "Platform/Qt/QtMainLoop.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace pavonel {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds shortest{1};
constexpr milliseconds longest = std::chrono::days{20}; // QTimer counts in an int

/// Rounded up, so that a timer is never early; what is no number counts as none.
milliseconds rounded(Seconds seconds) {
    constexpr Seconds century = 3'155'760'000;
    return milliseconds(seconds > 0 ? static_cast<qint64>(std::ceil(std::min(seconds, century) * 1000)) : 0);
}

class OneShot final : public Timer {
public:
    OneShot(Seconds delay, MainLoop::Action action) : left_(rounded(delay)), action_(std::move(action)) {
        timer_.setSingleShot(true);
        timer_.setTimerType(left_ >= std::chrono::seconds(10) ? Qt::CoarseTimer : Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { goOn(); });
        start();
    }

private:
    void start() {
        const milliseconds step = std::min(left_, longest);
        left_ -= step;
        timer_.start(step);
    }

    void goOn() {
        if (left_.count() > 0)
            return start();
        const MainLoop::Action running = std::exchange(action_, {}); // it may destroy this timer
        running();
    }

    QTimer timer_;
    milliseconds left_;
    MainLoop::Action action_;
};

} // namespace

/// While actions that are due together run. They share one look at the zone.
struct QtMainLoop::Beat {
    explicit Beat(QtMainLoop &in) : loop(in), outer(std::exchange(in.beat_, this)) {}
    ~Beat() { loop.beat_ = outer; }
    Beat(const Beat &) = delete;
    Beat &operator=(const Beat &) = delete;

    /// Not in a loop within theirs, which can last.
    bool isCurrent() const { return loopLevel == QThread::currentThread()->loopLevel(); }

    QtMainLoop &loop;
    Beat *outer;
    int loopLevel = QThread::currentThread()->loopLevel();
    QTimeZone zone = {};
};

/// One QTimer for all repeating timers of an interval.
class QtMainLoop::SharedTimer : public std::enable_shared_from_this<SharedTimer> {
public:
    SharedTimer(QtMainLoop &loop, milliseconds interval) : loop_(loop) {
        // A beat of seconds may give way a little, so that one wake-up serves several; a short one is motion.
        timer_.setTimerType(interval >= std::chrono::seconds(1) ? Qt::CoarseTimer : Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { beat(); });
        timer_.start(interval);
    }

    using Subscriber = std::shared_ptr<Action>;

    void add(const Subscriber &subscriber) { subscribers_.push_back(subscriber); }

private:
    /// An action may end any of the timers, begin others, and run a loop within this one.
    void beat() {
        const auto alive = shared_from_this();
        const Beat beat(loop_);
        if (beats_ == 0)
            std::erase_if(subscribers_, [](const auto &subscriber) { return subscriber.expired(); });
        ++beats_;
        for (std::size_t i = 0, count = subscribers_.size(); i < count; ++i) {
            if (const auto action = subscribers_[i].lock())
                (*action)();
        }
        --beats_;
    }

    QtMainLoop &loop_;
    QTimer timer_;
    std::vector<std::weak_ptr<Action>> subscribers_;
    int beats_ = 0; ///< Under way, one within the other.
};

namespace {

template <class SharedTimer> class Repeating final : public Timer {
public:
    Repeating(std::shared_ptr<SharedTimer> sharedTimer, MainLoop::Action action)
        : sharedTimer_(std::move(sharedTimer)),
          action_(std::make_shared<MainLoop::Action>(std::move(action))) {
        sharedTimer_->add(action_);
    }

private:
    std::shared_ptr<SharedTimer> sharedTimer_;
    std::shared_ptr<MainLoop::Action> action_;
};

} // namespace

QtMainLoop::QtMainLoop() = default;
QtMainLoop::~QtMainLoop() = default;

Instant QtMainLoop::now() const {
    return std::chrono::time_point_cast<Instant::duration>(std::chrono::system_clock::now());
}

QTimeZone QtMainLoop::zone() const {
    if (!beat_ || !beat_->isCurrent())
        return zone_.current();
    if (!beat_->zone.isValid())
        beat_->zone = zone_.current();
    return beat_->zone;
}

TimerHandle QtMainLoop::every(Seconds interval, Action action) {
    const milliseconds beat = std::clamp(rounded(interval), shortest, longest);
    auto &known = sharedTimers_[beat];
    auto sharedTimer = known.lock();
    if (!sharedTimer)
        known = sharedTimer = std::make_shared<SharedTimer>(*this, beat);
    return std::make_unique<Repeating<SharedTimer>>(std::move(sharedTimer), std::move(action));
}

TimerHandle QtMainLoop::after(Seconds delay, Action action) {
    return std::make_unique<OneShot>(delay, std::move(action));
}

void QtMainLoop::post(Action action) {
    QMetaObject::invokeMethod(&context_, std::move(action), Qt::QueuedConnection);
}

void QtMainLoop::quit(int status) {
    QCoreApplication::exit(status); // quit() asks the windows, and a break screen says no
}

} // namespace pavonel
