#pragma once

#include "Platform/Linux/Tray/DBusMenu.h"
#include "Platform/Linux/Tray/IconFiles.h"
#include "Platform/Linux/Tray/NotifierItem.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QPoint>
#include <QSet>

#include <functional>

namespace pavonel {

/// Our place with the hosts of the menu bar that speak StatusNotifierItem. Hosts may come late, go, and come
/// back.
class NotifierTray {
public:
    /// `presenceChanged` is called when a host of this kind came or went.
    NotifierTray(const QDBusConnection &bus, const QString &iconFolder, MainLoop &loop,
                 std::function<void()> presenceChanged, std::function<void(QPoint)> showMenu);
    ~NotifierTray();

    /// Whether there is somebody to show the item.
    bool isPresent() const { return !hosts_.isEmpty(); }

    void setIcon(const QString &symbol, const std::vector<QImage> &images);
    void setTitle(const QString &title) { item_.setLabel(title); }
    void setMenu(std::function<Menu()> makeMenu) { menu_.setMaker(std::move(makeMenu)); }

private:
    void notePresence(const QString &host, bool isThere);
    void announce();

    QDBusConnection bus_;
    QString serviceName_;
    NotifierItem item_;
    QList<DBusPixmap> pixmaps_;
    IconFiles files_;
    DBusMenu menu_;
    QDBusServiceWatcher watcher_;
    std::function<void()> presenceChanged_;
    QSet<QString> hosts_; ///< The names of those that are there.
};

} // namespace pavonel
