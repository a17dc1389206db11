#include "Platform/Linux/Bus/LogindPowerEvents.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace pavonel {

namespace {

const QString service = QStringLiteral("org.freedesktop.login1");
const QString path = QStringLiteral("/org/freedesktop/login1");
const QString interface = QStringLiteral("org.freedesktop.login1.Manager");

} // namespace

LogindPowerEvents::LogindPowerEvents(const QDBusConnection &bus)
    : bus_(bus), logind_(service, bus, QDBusServiceWatcher::WatchForRegistration) {
    if (!bus_.isConnected())
        return;
    bus_.connect(service, path, interface, QStringLiteral("PrepareForSleep"), this,
                 SLOT(prepareForSleep(bool)));
    connect(&logind_, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        isGoingToSleep_ = false; // the new one does not know of a sleep that its predecessor announced
        delaySleep();
    });
    delaySleep();
}

QString LogindPowerEvents::limitation() const {
    if (bus_.isConnected() && bus_.interface()->isServiceRegistered(service))
        return {};
    return QStringLiteral("This system does not tell when it wakes from sleep.");
}

void LogindPowerEvents::onSleep(std::function<void()> beforeSleep) {
    beforeSleep_ = std::move(beforeSleep);
}

void LogindPowerEvents::onWake(std::function<void()> afterWake) {
    afterWake_ = std::move(afterWake);
}

void LogindPowerEvents::prepareForSleep(bool isGoingToSleep) {
    isGoingToSleep_ = isGoingToSleep;
    const auto &handler = isGoingToSleep ? beforeSleep_ : afterWake_;
    if (handler)
        handler();
    if (isGoingToSleep)
        lock_ = {};
    else
        delaySleep();
}

void LogindPowerEvents::delaySleep() {
    QDBusMessage inhibit =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Inhibit"));
    inhibit << QStringLiteral("sleep") << QStringLiteral("Pavonel")
            << QStringLiteral("Saving the day's statistics") << QStringLiteral("delay");
    inhibit.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(bus_.asyncCall(inhibit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        if (reply.isValid() && !isGoingToSleep_) // a lock that comes this late would only hold up the sleep
            lock_ = reply.value();
        watcher->deleteLater();
    });
}

} // namespace pavonel
