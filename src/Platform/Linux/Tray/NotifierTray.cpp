#include "Platform/Linux/Tray/NotifierTray.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QPoint>
#include <QtEndian>

#include <utility>

namespace pavonel {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
/// Our extension of GNOME Shell shows the item by itself while it is there; nobody tells it.
const QString companionName = QStringLiteral("org.pavonel.Shell");
const QString itemPath = QStringLiteral("/StatusNotifierItem");

DBusPixmap busPixmap(const QImage &image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    DBusPixmap pixmap{argb.width(), argb.height(),
                      QByteArray(qsizetype{4} * argb.width() * argb.height(), Qt::Uninitialized)};
    char *out = pixmap.bytes.data();
    for (int y = 0; y < argb.height(); ++y) {
        qToBigEndian<quint32>(argb.constScanLine(y), argb.width(), out);
        out += qsizetype{4} * argb.width();
    }
    return pixmap;
}

} // namespace

NotifierTray::NotifierTray(const QDBusConnection &bus, const QString &iconFolder, MainLoop &loop,
                           std::function<void()> presenceChanged, std::function<void(QPoint)> showMenu)
    : bus_(bus),
      serviceName_(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid())),
      item_(iconFolder, std::move(showMenu)),
      files_(iconFolder, loop, [this](const QString &name) { item_.setIcon(name, pixmaps_); }),
      presenceChanged_(std::move(presenceChanged)) {
    constexpr auto exported = QDBusConnection::ExportAllContents;
    if (!bus_.isConnected() || !bus_.registerObject(itemPath, &item_, exported) ||
        !bus_.registerObject(NotifierItem::menuPath, &menu_, exported) || !bus_.registerService(serviceName_))
        return;
    watcher_.setConnection(bus_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher_.addWatchedService(watcherName);
    watcher_.addWatchedService(companionName);
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, &item_,
                     [this](const QString &host, const QString &, const QString &newOwner) {
                         notePresence(host, !newOwner.isEmpty());
                         presenceChanged_();
                     });
    for (const QString &host : {watcherName, companionName})
        notePresence(host, bus_.interface()->isServiceRegistered(host));
}

void NotifierTray::notePresence(const QString &host, bool isThere) {
    if (isThere)
        hosts_.insert(host);
    else
        hosts_.remove(host);
    if (isThere && host == watcherName)
        announce();
}

NotifierTray::~NotifierTray() {
    bus_.unregisterService(serviceName_);
    bus_.unregisterObject(itemPath);
    bus_.unregisterObject(NotifierItem::menuPath);
}

void NotifierTray::announce() {
    QDBusMessage call =
        QDBusMessage::createMethodCall(watcherName, QStringLiteral("/StatusNotifierWatcher"), watcherName,
                                       QStringLiteral("RegisterStatusNotifierItem"));
    call << serviceName_;
    call.setAutoStartService(false);
    bus_.call(call, QDBus::NoBlock);
}

void NotifierTray::setIcon(const QString &symbol, const std::vector<QImage> &images) {
    pixmaps_.clear();
    for (const QImage &image : images)
        pixmaps_.append(busPixmap(image));
    item_.setIcon(files_.nameFor(symbol, images), pixmaps_);
}

} // namespace pavonel
