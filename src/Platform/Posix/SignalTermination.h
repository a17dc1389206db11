#pragma once

#include "Platform/Termination.h"

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <memory>
#include <vector>

#include <signal.h>

namespace pavonel {

/// SIGTERM, SIGINT and SIGHUP, unless our parent has us ignore them (as nohup does), and Qt's session
/// manager.
class SignalTermination final : public QObject, public Termination {
public:
    /// One at a time: signals belong to the process.
    SignalTermination();
    ~SignalTermination() override;

    QString limitation() const override;
    void onSave(std::function<void()> save) override;
    void onEnd(std::function<void()> end) override;

    /// Qt would ask the windows before it quits, and a break screen does not close.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Replaced {
        int signal;
        struct sigaction action;
    };

    void catchSignal(int signal);
    void received();

    std::array<int, 2> pipe_{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<Replaced> replaced_;
    std::function<void()> end_;
    std::function<void()> save_;
};

} // namespace pavonel
