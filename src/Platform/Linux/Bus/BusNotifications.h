#pragma once

#include "Platform/Notifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace pavonel {

/// Notifications as every desktop has them, over the session bus. Where nobody shows any, nothing is seen.
class BusNotifications final : public QObject, public Notifications {
    Q_OBJECT

public:
    explicit BusNotifications(const QDBusConnection &session);

    [[nodiscard]] std::unique_ptr<Shown> show(Notice notice) override;

private Q_SLOTS:
    void takeAction(uint number, const QString &key, const QDBusMessage &message);

private:
    struct Sent;
    class Handle;

    void send(const std::shared_ptr<Sent> &sent);
    void withdraw(const QString &shownBy, uint number);

    QDBusConnection session_;
    std::vector<std::weak_ptr<Sent>> sent_;
};

} // namespace pavonel
