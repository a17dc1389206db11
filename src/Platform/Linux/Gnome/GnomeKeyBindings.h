#pragma once

#include "Platform/BackgroundTask.h"
#include "Platform/Linux/Gnome/customKeyBindings.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <functional>
#include <vector>

namespace pavonel {

/// Keeps our shortcuts among GNOME's custom key bindings for as long as they are wanted there and we run.
/// What a run that was killed has left is taken over, or away.
class GnomeKeyBindings final : public QObject {
    Q_OBJECT

public:
    using Wanted = std::function<std::vector<CustomKeyBinding>()>;

    /// `wanted` is asked a moment after each `review`, and not while the screen is locked: extensions are
    /// away then, and come back.
    GnomeKeyBindings(const QDBusConnection &session, MainLoop &loop, Wanted wanted);

    void review() { settle_.start(); }

    /// Whether the desktop does what they say, which another program has to.
    bool areHeeded() const;
    const QStringList &taken() const { return kept_.taken; }

Q_SIGNALS:
    /// Ours were there, and are not any more.
    void gone();

private Q_SLOTS:
    void followLock(bool isLocked);

private:
    void settle();
    void keep();
    void take(const CustomKeyBindings &kept);
    void giveBack();

    QDBusConnection session_;
    MainLoop &loop_;
    Wanted wanted_;
    QTimer settle_;
    BackgroundTask task_;
    bool again_ = false;                      ///< Something changed while the task ran.
    bool hasAny_ = true;                      ///< Or may have: an earlier run can have left some.
    CustomKeyBindings kept_{true, false, {}}; ///< Nothing is amiss until it is known.
};

} // namespace pavonel
