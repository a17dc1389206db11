#pragma once

#include "Platform/Linux/Keyboard/DesktopHotKeys.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

namespace pavonel {

/// Plasma's shortcuts, which its system settings list and let the user change. They stay known while we do
/// not run, and are forgotten by the first start without them.
class KGlobalAccelHotKeys final : public QObject, public DesktopHotKeys {
    Q_OBJECT

public:
    /// Null where KWin is not there to hear the keys.
    static std::shared_ptr<KGlobalAccelHotKeys> make(const QDBusConnection &bus);

    QString limitation() const override { return {}; }

private:
    explicit KGlobalAccelHotKeys(const QDBusConnection &bus);

    Q_SLOT void takePress(const QString &component, const QString &action);
    void askFor(const Key &key) override;
    void giveBack(const Key &key) override;
    void forgetUnused();

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
};

} // namespace pavonel
