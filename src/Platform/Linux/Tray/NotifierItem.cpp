#include "Platform/Linux/Tray/NotifierItem.h"

#include <QDBusMetaType>

namespace pavonel {

QDBusArgument &operator<<(QDBusArgument &argument, const DBusPixmap &pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusPixmap &pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusToolTip &toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusToolTip &toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

const QString NotifierItem::menuPath = QStringLiteral("/MenuBar");

NotifierItem::NotifierItem(QString iconThemePath, std::function<void(QPoint)> showMenu)
    : showMenu_(std::move(showMenu)), iconThemePath_(std::move(iconThemePath)) {
    qDBusRegisterMetaType<DBusPixmap>();
    qDBusRegisterMetaType<QList<DBusPixmap>>();
    qDBusRegisterMetaType<DBusToolTip>();
}

void NotifierItem::setIcon(const QString &name, const QList<DBusPixmap> &pixmaps) {
    iconName_ = name;
    pixmaps_ = pixmaps;
    Q_EMIT NewIcon();
}

void NotifierItem::setLabel(const QString &label) {
    if (label == label_)
        return;
    label_ = label;
    Q_EMIT XAyatanaNewLabel(label_, labelGuide());
    Q_EMIT NewToolTip();
}

} // namespace pavonel
