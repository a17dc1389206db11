#include "Platform/Posix/SignalTermination.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

#include <atomic>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace pavonel {

namespace {

std::atomic<int> toMainThread = -1;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler reads it");

void handle(int) {
    const int before = errno;
    const char wake = 0;
    // A full pipe has woken the main thread already.
    [[maybe_unused]] const auto written = ::write(toMainThread, &wake, 1);
    errno = before;
}

bool openPipe(std::array<int, 2> &ends) {
    if (::pipe(ends.data()) != 0)
        return false;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

} // namespace

SignalTermination::SignalTermination() {
    qGuiApp->installEventFilter(this);
    // Coming back after the next login is the business of the login item alone.
    QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager &session) {
        session.setRestartHint(QSessionManager::RestartNever);
        if (save_)
            save_();
    });
    if (!openPipe(pipe_))
        return;
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, this, [this] { received(); });
    toMainThread = pipe_[1];
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        catchSignal(signal);
}

SignalTermination::~SignalTermination() {
    for (const Replaced &replaced : replaced_)
        ::sigaction(replaced.signal, &replaced.action, nullptr);
    notifier_.reset();
    toMainThread = -1;
    for (const int end : pipe_) {
        if (end >= 0)
            ::close(end);
    }
}

QString SignalTermination::limitation() const {
    return notifier_ ? QString() : QStringLiteral("Signals cannot be received.");
}

void SignalTermination::onSave(std::function<void()> save) {
    save_ = std::move(save);
}

void SignalTermination::onEnd(std::function<void()> end) {
    end_ = std::move(end);
}

bool SignalTermination::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::Quit || watched != qGuiApp || !end_)
        return false;
    end_();
    return true;
}

void SignalTermination::catchSignal(int signal) {
    struct sigaction before {};
    if (::sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    if (::sigaction(signal, &action, nullptr) == 0)
        replaced_.push_back({signal, before});
}

void SignalTermination::received() {
    char wakes[16];
    while (::read(pipe_[0], wakes, sizeof wakes) > 0) {
    }
    if (end_)
        end_();
}

} // namespace pavonel
