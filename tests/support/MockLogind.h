#pragma once

#include "support/ChildProcess.h"
#include "support/MessageBus.h"

#include <QDBusConnection>
#include <QStringList>

#include <memory>

namespace pavonel::test {

/// A login manager that sleeps and wakes when a test says so, on a bus that stands for the system's.
class MockLogind {
public:
    MockLogind();
    ~MockLogind();

    QString address() const { return bus_.address(); }

    /// Connections for the objects to be tested; gone with this.
    QDBusConnection connection() const { return connection_; }

    void start();
    void stop();

    void goToSleep() { announce(true); }
    void wake() { announce(false); }

    /// Who holds up the sleep, as "what:who:mode".
    QStringList locks() const;

private:
    void announce(bool isGoingToSleep);

    MessageBus bus_;
    QDBusConnection connection_;
    std::unique_ptr<ChildProcess> logind_;
};

} // namespace pavonel::test
