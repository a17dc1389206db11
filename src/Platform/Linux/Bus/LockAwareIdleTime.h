#pragma once

#include "Platform/IdleTime.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace pavonel {

/// Any source of idle time, but a locked session counts as idle since its lock, whatever bumps the mouse. The
/// lock is learned of from the login manager's hint and from the screen saver, of whichever desktop.
class LockAwareIdleTime final : public QObject, public IdleTime {
    Q_OBJECT

public:
    /// Neither bus needs to be there.
    LockAwareIdleTime(std::unique_ptr<IdleTime> input, const QDBusConnection &system,
                      const QDBusConnection &session);

    Seconds idleSeconds() override;
    QString limitation() const override { return input_->limitation(); }

private Q_SLOTS:
    void sessionChanged(const QString &interface, const QVariantMap &changed);
    void screenSaverChanged(bool active, const QDBusMessage &message);

private:
    void findSession();
    void watchSession(const QString &path);
    void forgetSession();
    void updateLock();

    std::unique_ptr<IdleTime> input_;
    QDBusConnection system_;
    QDBusConnection session_;
    QDBusServiceWatcher logind_;
    QDBusServiceWatcher screenSavers_; ///< Those that are active: one that dies is no lock any more.
    QString sessionPath_;
    bool hinted_ = false;
    std::optional<Seconds> lockedAt_; ///< By a clock that runs on while the machine sleeps.
};

} // namespace pavonel
