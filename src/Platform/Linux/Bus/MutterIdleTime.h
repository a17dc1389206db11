#pragma once

#include "Platform/IdleTime.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QObject>

namespace pavonel {

/// The idle monitor of Mutter, GNOME's compositor: it tells when input has stopped for a while and when it
/// comes again, and in between nothing is asked. The monitor may come late, go, and come back.
class MutterIdleTime final : public QObject, public IdleTime {
    Q_OBJECT

public:
    /// The bus does not need to be there.
    explicit MutterIdleTime(const QDBusConnection &session);

    Seconds idleSeconds() override;
    QString limitation() const override;

private Q_SLOTS:
    void noticeFired(uint watch, const QDBusMessage &signal);

private:
    void begin(const QString &owner);
    void addWatch(const char *method, const QVariantList &arguments, uint MutterIdleTime::*watch);

    QDBusConnection session_;
    QDBusServiceWatcher monitor_;
    QString owner_; ///< Empty while there is no monitor.
    uint idleWatch_ = 0;
    uint activeWatch_ = 0;
    QElapsedTimer sinceIdle_; ///< Since the monitor told so; invalid while the user is active.
};

} // namespace pavonel
