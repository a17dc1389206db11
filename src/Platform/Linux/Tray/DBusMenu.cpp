#include "Platform/Linux/Tray/DBusMenu.h"

#include "Platform/Linux/Bus/refuse.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QGuiApplication>

#include <utility>

namespace pavonel {

namespace {

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

DBusMenuLayout DBusMenu::layout(int id, int depth, const QStringList &propertyNames) {
    // Some hosts read the menu without saying that they are about to show it.
    if (id == MenuModel::rootId)
        rebuild();
    const MenuModel::Node *node = model_.find(id);
    return node ? layoutOf(*node, depth, propertyNames) : DBusMenuLayout();
}

bool DBusMenu::aboutToShow(int id) {
    if (id != MenuModel::rootId || !rebuild())
        return false;
    Q_EMIT LayoutUpdated(revision_, MenuModel::rootId);
    return true;
}

void DBusMenu::take(int id, const QString &event) {
    const MenuModel::Node *node = event == u"clicked" ? model_.find(id) : nullptr;
    if (!node || !node->item.action)
        return;
    // The host waits for our answer: act when it has it, and on a copy, as the action may change the menu.
    QMetaObject::invokeMethod(this, std::function<void()>(node->item.action), Qt::QueuedConnection);
}

bool DBusMenu::refuses(const QDBusMessage &call, const char *signature) const {
    return refuseOthersThan(QString::fromLatin1(signature), call, connection());
}

void DBusMenu::answer(const QDBusMessage &call, const QVariantList &values) const {
    call.setDelayedReply(true); // or an empty reply would follow
    if (call.isReplyRequired())
        connection().send(call.createReply(values));
}

void DBusMenu::GetLayout(const QDBusMessage &call) {
    if (refuses(call, "iias"))
        return;
    const QVariantList arguments = call.arguments();
    const int depth = arguments[1].toInt();
    if (depth < -1)
        return refuse(call, connection(), QDBusError::errorString(QDBusError::LimitsExceeded),
                      QStringLiteral("No menu is of this depth."));
    const DBusMenuLayout answered = layout(arguments[0].toInt(), depth, arguments[2].toStringList());
    answer(call, {revision_, QVariant::fromValue(answered)});
}

void DBusMenu::GetGroupProperties(const QDBusMessage &call) {
    if (refuses(call, "aias"))
        return;
    const QVariantList arguments = call.arguments();
    QList<DBusMenuItem> items;
    for (const int id : qdbus_cast<QList<int>>(arguments[0])) {
        if (const MenuModel::Node *node = model_.find(id))
            items.append({id, selected(propertiesOf(*node), arguments[1].toStringList())});
    }
    answer(call, {QVariant::fromValue(items)});
}

void DBusMenu::GetProperty(const QDBusMessage &call) {
    if (refuses(call, "is"))
        return;
    const QVariantList arguments = call.arguments();
    const MenuModel::Node *node = model_.find(arguments[0].toInt());
    const QVariant value = node ? propertiesOf(*node).value(arguments[1].toString()) : QVariant();
    answer(call, {QVariant::fromValue(QDBusVariant(value.isValid() ? value : QVariant(QString())))});
}

void DBusMenu::Event(const QDBusMessage &call) {
    if (refuses(call, "isvu"))
        return;
    const QVariantList arguments = call.arguments();
    take(arguments[0].toInt(), arguments[1].toString());
}

void DBusMenu::EventGroup(const QDBusMessage &call) {
    if (refuses(call, "a(isvu)"))
        return;
    QList<int> unknown;
    for (const auto &event : qdbus_cast<QList<DBusMenuEvent>>(call.arguments()[0])) {
        if (!model_.find(event.id))
            unknown.append(event.id);
        take(event.id, event.eventId);
    }
    answer(call, {QVariant::fromValue(unknown)});
}

void DBusMenu::AboutToShow(const QDBusMessage &call) {
    if (!refuses(call, "i"))
        answer(call, {aboutToShow(call.arguments()[0].toInt())});
}

void DBusMenu::AboutToShowGroup(const QDBusMessage &call) {
    if (refuses(call, "ai"))
        return;
    QList<int> needUpdate;
    QList<int> unknown;
    for (const int id : qdbus_cast<QList<int>>(call.arguments()[0])) {
        if (!model_.find(id))
            unknown.append(id);
        else if (aboutToShow(id))
            needUpdate.append(id);
    }
    answer(call, {QVariant::fromValue(needUpdate), QVariant::fromValue(unknown)});
}

} // namespace pavonel
