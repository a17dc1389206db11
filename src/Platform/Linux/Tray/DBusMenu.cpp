#include "Platform/Linux/Tray/DBusMenu.h"

#include <QDBusMetaType>
#include <QGuiApplication>

#include <utility>

namespace pavonel {

namespace {

constexpr qsizetype mostAtOnce = 1000; // items or names in one question

/// A single underscore would mark the access key.
QString escaped(QString title) {
    return title.replace(u'_', QStringLiteral("__"));
}

/// Only what differs from the interface's defaults, as hosts expect.
QVariantMap propertiesOf(const MenuModel::Node &node) {
    QVariantMap properties;
    switch (node.item.kind) {
    case MenuItem::Kind::separator:
        properties[QStringLiteral("type")] = QStringLiteral("separator");
        return properties;
    case MenuItem::Kind::label:
        properties[QStringLiteral("enabled")] = false;
        break;
    case MenuItem::Kind::submenu:
        properties[QStringLiteral("children-display")] = QStringLiteral("submenu");
        break;
    case MenuItem::Kind::command:
        break;
    }
    if (node.id == MenuModel::rootId)
        properties[QStringLiteral("children-display")] = QStringLiteral("submenu");
    else
        properties[QStringLiteral("label")] = escaped(node.item.title);
    if (!node.item.keyEquivalent.isEmpty()) {
        // Hosts want the name of a key, which for a letter is the letter itself.
        const QString &key = node.item.keyEquivalent;
        const QList<QStringList> shortcut{
            {QStringLiteral("Control"), key == u"," ? QStringLiteral("comma") : key}};
        properties[QStringLiteral("shortcut")] = QVariant::fromValue(shortcut);
    }
    return properties;
}

QVariantMap selected(QVariantMap properties, const QStringList &names) {
    if (!names.isEmpty()) {
        for (auto property = properties.begin(); property != properties.end();)
            property = names.contains(property.key()) ? std::next(property) : properties.erase(property);
    }
    return properties;
}

/// A depth of -1 means all of it.
DBusMenuLayout layoutOf(const MenuModel::Node &node, int depth, const QStringList &names) {
    DBusMenuLayout layout{node.id, selected(propertiesOf(node), names), {}};
    if (depth != 0) {
        for (const MenuModel::Node &child : node.children)
            layout.children.append(layoutOf(child, depth - 1, names));
    }
    return layout;
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &item) {
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &item) {
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout) {
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(qMetaTypeId<QDBusVariant>());
    for (const DBusMenuLayout &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout) {
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.append(qdbus_cast<DBusMenuLayout>(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event) {
    argument.beginStructure();
    argument << event.id << event.eventId << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event) {
    argument.beginStructure();
    argument >> event.id >> event.eventId >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

DBusMenu::DBusMenu() {
    qDBusRegisterMetaType<DBusMenuItem>();
    qDBusRegisterMetaType<QList<DBusMenuItem>>();
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
    qDBusRegisterMetaType<QList<QStringList>>();
    qDBusRegisterMetaType<QList<int>>();
}

void DBusMenu::setMaker(std::function<Menu()> makeMenu) {
    makeMenu_ = std::move(makeMenu);
    rebuild();
}

QString DBusMenu::textDirection() const {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                                 : QStringLiteral("ltr");
}

bool DBusMenu::rebuild() {
    if (!makeMenu_ || !model_.replace(makeMenu_()))
        return false;
    ++revision_;
    return true;
}

bool DBusMenu::refuses(bool isAbsurd) const {
    if (isAbsurd && calledFromDBus())
        sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("No menu is of this size."));
    return isAbsurd;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                         DBusMenuLayout &layout) {
    if (refuses(recursionDepth < -1 || propertyNames.size() > mostAtOnce))
        return 0;
    // Some hosts read the menu without saying that they are about to show it.
    if (parentId == MenuModel::rootId)
        rebuild();
    if (const MenuModel::Node *node = model_.find(parentId))
        layout = layoutOf(*node, recursionDepth, propertyNames);
    return revision_;
}

QList<DBusMenuItem> DBusMenu::GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames) {
    if (refuses(ids.size() > mostAtOnce || propertyNames.size() > mostAtOnce))
        return {};
    QList<DBusMenuItem> items;
    for (const int id : ids) {
        if (const MenuModel::Node *node = model_.find(id))
            items.append({id, selected(propertiesOf(*node), propertyNames)});
    }
    return items;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString &name) {
    const MenuModel::Node *node = model_.find(id);
    const QVariant value = node ? propertiesOf(*node).value(name) : QVariant();
    return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void DBusMenu::Event(int id, const QString &eventId, const QDBusVariant &, uint) {
    const MenuModel::Node *node = eventId == u"clicked" ? model_.find(id) : nullptr;
    if (!node || !node->item.action)
        return;
    // The host waits for our answer: act when it has it, and on a copy, as the action may change the menu.
    QMetaObject::invokeMethod(this, std::function<void()>(node->item.action), Qt::QueuedConnection);
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent> &events) {
    if (refuses(events.size() > mostAtOnce))
        return {};
    QList<int> unknown;
    for (const DBusMenuEvent &event : events) {
        if (!model_.find(event.id))
            unknown.append(event.id);
        Event(event.id, event.eventId, event.data, event.timestamp);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int id) {
    if (id != MenuModel::rootId || !rebuild())
        return false;
    Q_EMIT LayoutUpdated(revision_, MenuModel::rootId);
    return true;
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors) {
    if (refuses(ids.size() > mostAtOnce))
        return {};
    QList<int> needUpdate;
    for (const int id : ids) {
        if (!model_.find(id))
            idErrors.append(id);
        else if (AboutToShow(id))
            needUpdate.append(id);
    }
    return needUpdate;
}

} // namespace pavonel
