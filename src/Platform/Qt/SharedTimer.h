#pragma once

#include "Platform/MainLoop.h"

#include <QBasicTimer>
#include <QObject>

#include <chrono>
#include <memory>
#include <vector>

namespace pavonel {

/// One timer of Qt's for all repeating timers of an interval.
///
/// When all of them can wait, a beat is only counted, which costs little more than the wake-up. The waiting
/// beats are made up for before any event of another object and before the next beat that runs.
class SharedTimer final : public QObject, public std::enable_shared_from_this<SharedTimer> {
public:
    using Beat = MainLoop::Deferrable;

    explicit SharedTimer(std::chrono::milliseconds interval);

    void add(const std::shared_ptr<Beat> &beat);
    void noteEnd() { hasEnded_ = true; }

    bool eventFilter(QObject *watched, QEvent *event) override;

    /// So that what is looked at in a beat, because nobody tells of it, is not seen much too late.
    static constexpr int mostWaiting = 4;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    using WallTime = std::chrono::system_clock::time_point;

    bool canWait(WallTime now) const;
    void catchUp();
    void run();
    template <class Use> void forEach(Use use);

    std::chrono::milliseconds interval_;
    QBasicTimer timer_;
    std::vector<std::weak_ptr<Beat>> beats_;
    bool hasEnded_ = false; ///< One of them, or more.
    bool isFilter_ = false; ///< Of the application's events.
    int patience_ = 0;      ///< How many beats can wait after the last one that ran.
    int waiting_ = 0;
    WallTime last_; ///< When the last beat came, whether it ran or waits.
};

} // namespace pavonel
