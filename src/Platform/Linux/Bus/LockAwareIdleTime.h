#pragma once

#include "Platform/IdleTime.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace pavonel {

/// Any source of idle time, but a locked session counts as idle since its lock, whatever bumps the mouse. The
/// lock is learned of from the login manager's hint and from the screen saver, of whichever desktop. Nobody's
/// word counts for ever: a screen saver is believed while it owns the name of its kind, until somebody says
/// otherwise, and not against a login manager that keeps its hint.
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
    void believe(const QString &screenSaver, const QString &sender);
    void doubt(const QString &screenSaver);
    void updateLock();

    std::unique_ptr<IdleTime> input_;
    QDBusConnection system_;
    QDBusConnection session_;
    QDBusServiceWatcher logind_;
    QDBusServiceWatcher screenSavers_;
    QHash<QString, QString> claims_; ///< Who says to be active, by the name of its kind.
    QSet<QString> active_;           ///< Those of them that own that name.
    QString sessionPath_;
    bool hinted_ = false;
    bool isHintKept_ = false;         ///< Here the hint tells of locks, so it tells of their end too.
    std::optional<Seconds> lockedAt_; ///< By a clock that runs on while the machine sleeps.
};

} // namespace pavonel
