#pragma once

#include "Platform/MainLoop.h"
#include "Platform/Posix/LocalZone.h"

#include <QObject>

#include <chrono>
#include <map>
#include <memory>

namespace pavonel {

class SharedTimer;

/// The main loop of the application object.
class QtMainLoop final : public MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;

    Instant now() const override;
    QTimeZone zone() const override;
    TimerHandle every(Seconds interval, Action action) override;
    TimerHandle everyDeferrable(Seconds interval, Deferrable deferrable) override;
    TimerHandle after(Seconds delay, Action action) override;
    void post(Action action) override;
    void quit(int status) override;

private:
    QObject context_;
    mutable LocalZone zone_;
    std::map<std::chrono::milliseconds, std::weak_ptr<SharedTimer>> sharedTimers_;
};

} // namespace pavonel
