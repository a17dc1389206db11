#include "Platform/Qt/QtMainLoop.h"

#include <QBasicTimer>
#include <QCoreApplication>
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

/// One timer of Qt's for all repeating timers of an interval.
class QtMainLoop::SharedTimer final : public QObject, public std::enable_shared_from_this<SharedTimer> {
public:
    explicit SharedTimer(milliseconds interval) {
        // A beat of seconds may give way a little, so that one wake-up serves several; a short one is motion.
        const bool isMotion = interval < std::chrono::seconds(1);
        timer_.start(static_cast<int>(interval.count()), isMotion ? Qt::PreciseTimer : Qt::CoarseTimer, this);
    }

    void add(const std::shared_ptr<Action> &action) { actions_.push_back(action); }
    void noteEnd() { hasEnded_ = true; }

protected:
    /// An action may end any of the timers, begin others, and run a loop within this one; Qt lets no timer
    /// beat within its own beat.
    void timerEvent(QTimerEvent *) override {
        const auto alive = shared_from_this();
        if (std::exchange(hasEnded_, false))
            std::erase_if(actions_, [](const auto &action) { return action.expired(); });
        for (std::size_t i = 0, count = actions_.size(); i < count; ++i) {
            if (const auto action = actions_[i].lock())
                (*action)();
        }
    }

private:
    QBasicTimer timer_;
    std::vector<std::weak_ptr<Action>> actions_;
    bool hasEnded_ = false; ///< One of them, or more.
};

namespace {

template <class SharedTimer> class Repeating final : public Timer {
public:
    Repeating(std::shared_ptr<SharedTimer> sharedTimer, MainLoop::Action action)
        : sharedTimer_(std::move(sharedTimer)),
          action_(std::make_shared<MainLoop::Action>(std::move(action))) {
        sharedTimer_->add(action_);
    }
    ~Repeating() override { sharedTimer_->noteEnd(); }

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
    return zone_.current();
}

TimerHandle QtMainLoop::every(Seconds interval, Action action) {
    const milliseconds beat = std::clamp(rounded(interval), shortest, longest);
    auto &known = sharedTimers_[beat];
    auto sharedTimer = known.lock();
    if (!sharedTimer)
        known = sharedTimer = std::make_shared<SharedTimer>(beat);
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
