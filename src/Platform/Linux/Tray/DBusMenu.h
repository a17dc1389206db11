#pragma once

#include "Platform/Linux/Tray/MenuModel.h"

#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

namespace pavonel {

/// An item and its properties on the bus, and the tree that they form.
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties;
};
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};
struct DBusMenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event);

/// A menu that hosts of the menu bar read over the bus: the interface com.canonical.dbusmenu, version 3
/// (described in libdbusmenu's dbus-menu.xml). It is made anew each time a host is about to show it.
/// Anybody can call here, so the calls are taken as they come, and those of a size that no host sends are
/// refused before they are read.
class DBusMenu final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_CLASSINFO("D-Bus Introspection", "<interface name=\"com.canonical.dbusmenu\">\n"
                                       "<property name=\"Version\" type=\"u\" access=\"read\"/>\n"
                                       "<property name=\"TextDirection\" type=\"s\" access=\"read\"/>\n"
                                       "<property name=\"Status\" type=\"s\" access=\"read\"/>\n"
                                       "<property name=\"IconThemePath\" type=\"as\" access=\"read\"/>\n"
                                       "<method name=\"GetLayout\">\n"
                                       "<arg name=\"parentId\" type=\"i\" direction=\"in\"/>\n"
                                       "<arg name=\"recursionDepth\" type=\"i\" direction=\"in\"/>\n"
                                       "<arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>\n"
                                       "<arg name=\"revision\" type=\"u\" direction=\"out\"/>\n"
                                       "<arg name=\"layout\" type=\"(ia{sv}av)\" direction=\"out\"/>\n"
                                       "</method>\n"
                                       "<method name=\"GetGroupProperties\">\n"
                                       "<arg name=\"ids\" type=\"ai\" direction=\"in\"/>\n"
                                       "<arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>\n"
                                       "<arg name=\"properties\" type=\"a(ia{sv})\" direction=\"out\"/>\n"
                                       "</method>\n"
                                       "<method name=\"GetProperty\">\n"
                                       "<arg name=\"id\" type=\"i\" direction=\"in\"/>\n"
                                       "<arg name=\"name\" type=\"s\" direction=\"in\"/>\n"
                                       "<arg name=\"value\" type=\"v\" direction=\"out\"/>\n"
                                       "</method>\n"
                                       "<method name=\"Event\">\n"
                                       "<arg name=\"id\" type=\"i\" direction=\"in\"/>\n"
                                       "<arg name=\"eventId\" type=\"s\" direction=\"in\"/>\n"
                                       "<arg name=\"data\" type=\"v\" direction=\"in\"/>\n"
                                       "<arg name=\"timestamp\" type=\"u\" direction=\"in\"/>\n"
                                       "</method>\n"
                                       "<method name=\"EventGroup\">\n"
                                       "<arg name=\"events\" type=\"a(isvu)\" direction=\"in\"/>\n"
                                       "<arg name=\"idErrors\" type=\"ai\" direction=\"out\"/>\n"
                                       "</method>\n"
                                       "<method name=\"AboutToShow\">\n"
                                       "<arg name=\"id\" type=\"i\" direction=\"in\"/>\n"
                                       "<arg name=\"needUpdate\" type=\"b\" direction=\"out\"/>\n"
                                       "</method>\n"
                                       "<method name=\"AboutToShowGroup\">\n"
                                       "<arg name=\"ids\" type=\"ai\" direction=\"in\"/>\n"
                                       "<arg name=\"updatesNeeded\" type=\"ai\" direction=\"out\"/>\n"
                                       "<arg name=\"idErrors\" type=\"ai\" direction=\"out\"/>\n"
                                       "</method>\n"
                                       "<signal name=\"ItemsPropertiesUpdated\">\n"
                                       "<arg name=\"updatedProps\" type=\"a(ia{sv})\"/>\n"
                                       "<arg name=\"removedProps\" type=\"a(ias)\"/>\n"
                                       "</signal>\n"
                                       "<signal name=\"LayoutUpdated\">\n"
                                       "<arg name=\"revision\" type=\"u\"/>\n"
                                       "<arg name=\"parent\" type=\"i\"/>\n"
                                       "</signal>\n"
                                       "<signal name=\"ItemActivationRequested\">\n"
                                       "<arg name=\"id\" type=\"i\"/>\n"
                                       "<arg name=\"timestamp\" type=\"u\"/>\n"
                                       "</signal>\n"
                                       "</interface>\n")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    DBusMenu();

    void setMaker(std::function<Menu()> makeMenu);

    /// An item and what hangs on it, as deep as is asked; a depth of -1 means all of it.
    DBusMenuLayout layout(int id, int depth, const QStringList &propertyNames);
    uint revision() const { return revision_; }
    /// True when hosts have to read it anew.
    bool aboutToShow(int id);
    /// What a host says has happened to an item.
    void take(int id, const QString &event);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    void GetLayout(const QDBusMessage &call);
    void GetGroupProperties(const QDBusMessage &call);
    void GetProperty(const QDBusMessage &call);
    void Event(const QDBusMessage &call);
    void EventGroup(const QDBusMessage &call);
    void AboutToShow(const QDBusMessage &call);
    void AboutToShowGroup(const QDBusMessage &call);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const QList<pavonel::DBusMenuItem> &updatedProps,
                                const QList<pavonel::DBusMenuItem> &removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    bool rebuild();
    bool refuses(const QDBusMessage &call, const char *signature) const;
    void answer(const QDBusMessage &call, const QVariantList &values) const;

    std::function<Menu()> makeMenu_;
    MenuModel model_;
    uint revision_ = 1;
};

} // namespace pavonel

Q_DECLARE_METATYPE(pavonel::DBusMenuItem)
Q_DECLARE_METATYPE(pavonel::DBusMenuLayout)
Q_DECLARE_METATYPE(pavonel::DBusMenuEvent)
