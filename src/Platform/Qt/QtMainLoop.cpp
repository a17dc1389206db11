#include "Platform/Qt/QtMainLoop.h"

#include "Platform/Qt/SharedTimer.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

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

class Repeating final : public Timer {
public:
    Repeating(std::shared_ptr<SharedTimer> sharedTimer, SharedTimer::Beat beat)
        : sharedTimer_(std::move(sharedTimer)), beat_(std::make_shared<SharedTimer::Beat>(std::move(beat))) {
        sharedTimer_->add(beat_);
    }
    ~Repeating() override { sharedTimer_->noteEnd(); }

private:
    std::shared_ptr<SharedTimer> sharedTimer_;
    std::shared_ptr<SharedTimer::Beat> beat_;
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
    return everyDeferrable(interval, {[action = std::move(action)] {
                               action();
                               return 0;
                           }});
}

TimerHandle QtMainLoop::everyDeferrable(Seconds interval, Deferrable deferrable) {
    const milliseconds beat = std::clamp(rounded(interval), shortest, longest);
    auto &known = sharedTimers_[beat];
    auto sharedTimer = known.lock();
    if (!sharedTimer)
        known = sharedTimer = std::make_shared<SharedTimer>(beat);
    return std::make_unique<Repeating>(std::move(sharedTimer), std::move(deferrable));
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
