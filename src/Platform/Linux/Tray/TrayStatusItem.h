#pragma once

#include "Platform/Appearance.h"
#include "Platform/Linux/Tray/NotifierTray.h"
#include "Platform/StatusItem.h"

#include <QMenu>

#include <memory>

namespace pavonel {

/// The item in whatever kind of menu bar this desktop has.
class TrayStatusItem final : public StatusItem {
public:
    TrayStatusItem(const QDBusConnection &bus, const QString &iconFolder, Appearance &appearance);

    QString limitation() const override;
    void setIcon(const QString &name, const std::vector<QImage> &images) override;
    void setTitle(const QString &title) override;
    void setMenu(std::function<Menu()> makeMenu) override;

private:
    void showMenu(QPoint place);

    Appearance &appearance_;
    std::function<Menu()> makeMenu_;
    std::unique_ptr<QMenu> openMenu_;
    NotifierTray notifier_;
};

} // namespace pavonel
