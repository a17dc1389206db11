#pragma once

#include "Platform/Appearance.h"
#include "Platform/Linux/Tray/EmbeddedTray.h"
#include "Platform/Linux/Tray/NotifierTray.h"
#include "Platform/StatusItem.h"

#include <QMenu>

#include <memory>

namespace pavonel {

/// The item in whatever kind of menu bar this desktop has: a StatusNotifierItem host where there is one, else
/// a tray that takes windows in.
class TrayStatusItem final : public StatusItem {
public:
    /// `x` may be null: not every desktop has an X server.
    TrayStatusItem(const QDBusConnection &bus, const QString &iconFolder, Appearance &appearance,
                   const std::shared_ptr<X11Connection> &x);

    QString limitation() const override;
    void setIcon(const QString &name, const std::vector<QImage> &images) override;
    void setTitle(const QString &title) override;
    void setMenu(std::function<Menu()> makeMenu) override;

private:
    void chooseTray();
    void showMenu(QPoint place);

    Appearance &appearance_;
    std::function<Menu()> makeMenu_;
    std::unique_ptr<QMenu> openMenu_;
    NotifierTray notifier_;
    std::unique_ptr<EmbeddedTray> embedded_;
};

} // namespace pavonel
