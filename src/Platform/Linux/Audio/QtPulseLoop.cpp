#include "Platform/Linux/Audio/QtPulseLoop.h"

#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <memory>

#include <sys/time.h>

namespace {

/// libpulse frees events from within their own callbacks, while Qt is still busy with the object.
struct DeleteLater {
    void operator()(QObject *object) const {
        object->disconnect();
        object->deleteLater();
    }
};

std::unique_ptr<QTimer, DeleteLater> makeTimer() {
    return std::unique_ptr<QTimer, DeleteLater>(new QTimer);
}

} // namespace

// libpulse only declares these three types; the loop decides what they are.

struct pa_io_event {
    using Notifier = std::unique_ptr<QSocketNotifier, DeleteLater>;

    pa_io_event(pa_mainloop_api *api, int descriptor, pa_io_event_flags_t events, pa_io_event_cb_t onReady,
                void *data)
        : loop(api), fd(descriptor), ready(onReady), userdata(data),
          readable(notifier(QSocketNotifier::Read, PA_IO_EVENT_INPUT)),
          writable(notifier(QSocketNotifier::Write, PA_IO_EVENT_OUTPUT)) {
        enable(events);
    }

    ~pa_io_event() {
        enable(PA_IO_EVENT_NULL); // at once: the descriptor may be closed next
        if (destroyed)
            destroyed(loop, this, userdata);
    }

    void enable(pa_io_event_flags_t events) {
        readable->setEnabled((events & PA_IO_EVENT_INPUT) != 0);
        writable->setEnabled((events & PA_IO_EVENT_OUTPUT) != 0);
    }

    Notifier notifier(QSocketNotifier::Type type, pa_io_event_flags_t flag) {
        Notifier made(new QSocketNotifier(fd, type));
        QObject::connect(made.get(), &QSocketNotifier::activated, made.get(),
                         [this, flag] { ready(loop, this, fd, flag, userdata); });
        return made;
    }

    pa_mainloop_api *loop;
    int fd;
    pa_io_event_cb_t ready;
    void *userdata;
    pa_io_event_destroy_cb_t destroyed = nullptr;
    Notifier readable;
    Notifier writable;
};

struct pa_time_event {
    pa_time_event(pa_mainloop_api *api, const timeval *due, pa_time_event_cb_t onDue, void *data)
        : loop(api), expired(onDue), userdata(data) {
        timer->setSingleShot(true);
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(),
                         [this] { expired(loop, this, &deadline, userdata); });
        restart(due);
    }

    ~pa_time_event() {
        timer->stop();
        if (destroyed)
            destroyed(loop, this, userdata);
    }

    /// Deadlines are on the wall clock; none stops the timer.
    void restart(const timeval *due) {
        if (!due) {
            timer->stop();
            return;
        }
        deadline = *due;
        timeval now{};
        gettimeofday(&now, nullptr);
        const auto microseconds = (due->tv_sec - now.tv_sec) * 1'000'000 + (due->tv_usec - now.tv_usec);
        constexpr decltype(microseconds) day = 86'400'000;
        timer->start(static_cast<int>(std::clamp<decltype(day)>(microseconds / 1000 + 1, 0, day)));
    }

    pa_mainloop_api *loop;
    pa_time_event_cb_t expired;
    void *userdata;
    pa_time_event_destroy_cb_t destroyed = nullptr;
    timeval deadline{};
    std::unique_ptr<QTimer, DeleteLater> timer = makeTimer();
};

struct pa_defer_event {
    pa_defer_event(pa_mainloop_api *api, pa_defer_event_cb_t onTurn, void *data)
        : loop(api), turn(onTurn), userdata(data) {
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [this] { turn(loop, this, userdata); });
        timer->start(0);
    }

    ~pa_defer_event() {
        timer->stop();
        if (destroyed)
            destroyed(loop, this, userdata);
    }

    pa_mainloop_api *loop;
    pa_defer_event_cb_t turn; ///< Called on every turn of the loop while the timer runs.
    void *userdata;
    pa_defer_event_destroy_cb_t destroyed = nullptr;
    std::unique_ptr<QTimer, DeleteLater> timer = makeTimer();
};

namespace pavonel {

QtPulseLoop::QtPulseLoop()
    : api_{
          .userdata = nullptr,
          .io_new = [](pa_mainloop_api *api, int fd, pa_io_event_flags_t events, pa_io_event_cb_t ready,
                       void *userdata) { return new pa_io_event(api, fd, events, ready, userdata); },
          .io_enable = [](pa_io_event *event, pa_io_event_flags_t events) { event->enable(events); },
          .io_free = [](pa_io_event *event) { delete event; },
          .io_set_destroy = [](pa_io_event *event,
                               pa_io_event_destroy_cb_t destroyed) { event->destroyed = destroyed; },
          .time_new = [](pa_mainloop_api *api, const timeval *due, pa_time_event_cb_t expired,
                         void *userdata) { return new pa_time_event(api, due, expired, userdata); },
          .time_restart = [](pa_time_event *event, const timeval *due) { event->restart(due); },
          .time_free = [](pa_time_event *event) { delete event; },
          .time_set_destroy = [](pa_time_event *event,
                                 pa_time_event_destroy_cb_t destroyed) { event->destroyed = destroyed; },
          .defer_new = [](pa_mainloop_api *api, pa_defer_event_cb_t turn,
                          void *userdata) { return new pa_defer_event(api, turn, userdata); },
          .defer_enable =
              [](pa_defer_event *event, int enable) {
                  if (enable)
                      event->timer->start(0);
                  else
                      event->timer->stop();
              },
          .defer_free = [](pa_defer_event *event) { delete event; },
          .defer_set_destroy = [](pa_defer_event *event,
                                  pa_defer_event_destroy_cb_t destroyed) { event->destroyed = destroyed; },
          .quit = [](pa_mainloop_api *, int) {},
      } {}

} // namespace pavonel
