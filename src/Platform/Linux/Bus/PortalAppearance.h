#pragma once

#include "Platform/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantMap>

class QDBusPendingCallWatcher;

namespace pavonel {

/// Settings of the desktop, by namespace and key.
using DesktopSettings = QMap<QString, QVariantMap>;

/// The desktop's wishes as its settings portal tells them. What the portal leaves open, or where there is
/// none, Qt's palette decides between light and dark.
class PortalAppearance final : public QObject, public Appearance {
    Q_OBJECT

public:
    /// Asks the portal without waiting; until it has answered, the palette decides.
    explicit PortalAppearance(const QDBusConnection &bus);

    AppearanceWishes wishes() override { return wishes_; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Q_SLOT void takeSetting(const QDBusMessage &signal);
    void ask();
    void takeAnswer(const QDBusPendingCallWatcher &call);
    void update();

    QDBusConnection bus_;
    QDBusServiceWatcher portal_;
    DesktopSettings settings_;
    DesktopSettings toldSince_; ///< What signals said since the question; its answer can be older.
    AppearanceWishes wishes_;
};

} // namespace pavonel
