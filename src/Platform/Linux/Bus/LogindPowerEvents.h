#pragma once

#include "Platform/PowerEvents.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QObject>

namespace pavonel {

/// What the login manager says about sleep. While awake we hold a lock that delays the sleep until the
/// handler has returned.
class LogindPowerEvents final : public QObject, public PowerEvents {
    Q_OBJECT

public:
    /// `bus` is the system's; it need not be there.
    explicit LogindPowerEvents(const QDBusConnection &bus);

    QString limitation() const override;
    void onSleep(std::function<void()> beforeSleep) override;
    void onWake(std::function<void()> afterWake) override;

private Q_SLOTS:
    void prepareForSleep(bool isGoingToSleep);

private:
    void delaySleep();

    QDBusConnection bus_;
    QDBusServiceWatcher logind_;
    QDBusUnixFileDescriptor lock_;
    bool isGoingToSleep_ = false;
    std::function<void()> beforeSleep_;
    std::function<void()> afterWake_;
};

} // namespace pavonel
