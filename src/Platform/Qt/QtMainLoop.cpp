#include "Platform/Qt/QtMainLoop.h"

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

/// One QTimer for all repeating timers of an interval.
class QtMainLoop::Metronome {
public:
    explicit Metronome(milliseconds interval) {
        // A beat of seconds may give way a little, so that one wake-up serves several; a short one is motion.
        timer_.setTimerType(interval >= std::chrono::seconds(1) ? Qt::CoarseTimer : Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { beat(); });
        timer_.start(interval);
    }

    using Subscriber = std::shared_ptr<Action>;

    void add(const Subscriber &subscriber) { subscribers_.push_back(subscriber); }

private:
    void beat() {
        // An action may end any of the timers, and the last one takes this object along.
        std::erase_if(subscribers_, [](const auto &subscriber) { return subscriber.expired(); });
        const auto subscribers = subscribers_;
        for (const auto &weak : subscribers) {
            if (const auto action = weak.lock())
                (*action)();
        }
    }

    QTimer timer_;
    std::vector<std::weak_ptr<Action>> subscribers_;
};

namespace {

template <class Metronome> class Repeating final : public Timer {
public:
    Repeating(std::shared_ptr<Metronome> metronome, MainLoop::Action action)
        : metronome_(std::move(metronome)), action_(std::make_shared<MainLoop::Action>(std::move(action))) {
        metronome_->add(action_);
    }

private:
    std::shared_ptr<Metronome> metronome_;
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
    auto &known = metronomes_[beat];
    auto metronome = known.lock();
    if (!metronome)
        known = metronome = std::make_shared<Metronome>(beat);
    return std::make_unique<Repeating<Metronome>>(std::move(metronome), std::move(action));
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
