#include "Platform/Qt/QtMainLoop.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <cmath>
#include <ctime>
#include <list>
#include <utility>

namespace pavonel {

namespace {

/// Rounded up, so that a timer is never early.
std::chrono::milliseconds milliseconds(Seconds seconds) {
    constexpr Seconds longest =
        24 * 3600 * 20; // what QTimer's int of milliseconds holds, and more than enough
    return std::chrono::milliseconds(
        static_cast<qint64>(std::ceil(std::clamp(seconds, 0.0, longest) * 1000)));
}

/// Seconds-long timers may drift a little so that the system can wake once for several; short ones are
/// motion.
Qt::TimerType typeFor(Seconds interval) {
    return interval >= 1 ? Qt::CoarseTimer : Qt::PreciseTimer;
}

class OneShot final : public Timer {
public:
    OneShot(Seconds delay, MainLoop::Action action) : action_(std::move(action)) {
        timer_.setSingleShot(true);
        timer_.setTimerType(delay >= 10 ? Qt::CoarseTimer : Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            const MainLoop::Action running = std::exchange(action_, {}); // it may destroy this timer
            running();
        });
        timer_.start(milliseconds(delay));
    }

private:
    QTimer timer_;
    MainLoop::Action action_;
};

} // namespace

/// One QTimer for all repeating timers of an interval.
class QtMainLoop::Metronome {
public:
    explicit Metronome(Seconds interval) {
        timer_.setTimerType(typeFor(interval));
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { beat(); });
        timer_.start(milliseconds(interval));
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
    return QTimeZone::systemTimeZone();
}

TimerHandle QtMainLoop::every(Seconds interval, Action action) {
    auto metronome = metronomes_[interval].lock();
    if (!metronome) {
        metronome = std::make_shared<Metronome>(interval);
        metronomes_[interval] = metronome;
    }
    return std::make_unique<Repeating<Metronome>>(std::move(metronome), std::move(action));
}

TimerHandle QtMainLoop::after(Seconds delay, Action action) {
    return std::make_unique<OneShot>(delay, std::move(action));
}

void QtMainLoop::post(Action action) {
    QMetaObject::invokeMethod(&context_, std::move(action), Qt::QueuedConnection);
}

} // namespace pavonel
