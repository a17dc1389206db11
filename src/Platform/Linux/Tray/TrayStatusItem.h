#pragma once

#include "Platform/Appearance.h"
#include "Platform/Linux/Tray/EmbeddedTray.h"
#include "Platform/Linux/Tray/NotifierTray.h"
#include "Platform/Linux/Tray/TrayMenu.h"
#include "Platform/StatusItem.h"

#include <QImage>

#include <memory>

namespace pavonel {

/// The item in whatever kind of menu bar this desktop has: a StatusNotifierItem host where there is one, else
/// a tray that takes windows in.
class TrayStatusItem final : public StatusItem {
public:
    /// `x` may be null: not every desktop has an X server.
    TrayStatusItem(const QDBusConnection &bus, const QString &iconFolder, MainLoop &loop,
                   Appearance &appearance, const std::shared_ptr<X11Connection> &x);

    QString limitation() const override;
    void setIcon(const QString &name, const std::vector<QImage> &images) override;
    void setTitle(const QString &title) override;
    void setMenu(std::function<Menu()> makeMenu) override;

private:
    void chooseTray();
    void showIcon();
    void showMenu(const TrayPlace &place);

    Appearance &appearance_;
    std::function<Menu()> makeMenu_;
    std::unique_ptr<TrayMenu> openMenu_;
    QString iconName_;
    std::vector<QImage> images_;
    NotifierTray notifier_;
    std::unique_ptr<EmbeddedTray> embedded_;
    Appearance::Listening onAppearance_;
};

} // namespace pavonel
