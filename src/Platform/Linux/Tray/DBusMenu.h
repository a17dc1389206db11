#pragma once

#include "Platform/Linux/Tray/MenuModel.h"

#include <QDBusArgument>
#include <QDBusContext>
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
/// Questions of a size that no host asks are answered with an error.
class DBusMenu final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    DBusMenu();

    void setMaker(std::function<Menu()> makeMenu);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                   pavonel::DBusMenuLayout &layout);
    QList<pavonel::DBusMenuItem> GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const QList<pavonel::DBusMenuEvent> &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const QList<pavonel::DBusMenuItem> &updatedProps,
                                const QList<pavonel::DBusMenuItem> &removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    bool rebuild();
    bool refuses(bool isAbsurd) const;

    std::function<Menu()> makeMenu_;
    MenuModel model_;
    uint revision_ = 1;
};

} // namespace pavonel

Q_DECLARE_METATYPE(pavonel::DBusMenuItem)
Q_DECLARE_METATYPE(pavonel::DBusMenuLayout)
Q_DECLARE_METATYPE(pavonel::DBusMenuEvent)
