#pragma once

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

#include <functional>

namespace pavonel {

/// A picture on the bus: ARGB, 32 bits, big endian, not premultiplied.
struct DBusPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
struct DBusToolTip {
    QString iconName;
    QList<DBusPixmap> pixmaps;
    QString title;
    QString text;
};

QDBusArgument &operator<<(QDBusArgument &argument, const DBusPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusToolTip &toolTip);

/// The program's item as hosts of the menu bar see it: org.kde.StatusNotifierItem of the freedesktop.org
/// StatusNotifierItem specification, with Ayatana's label.
class NotifierItem final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(QString IconThemePath READ iconThemePath CONSTANT)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<pavonel::DBusPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(QList<pavonel::DBusPixmap> OverlayIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(QList<pavonel::DBusPixmap> AttentionIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionMovieName READ noName CONSTANT)
    Q_PROPERTY(pavonel::DBusToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide CONSTANT)

public:
    static const QString menuPath;

    /// `showMenu` is called when a host that does not open the menu by itself asks for it, at a place on the
    /// screen.
    NotifierItem(QString iconThemePath, std::function<void(QPoint)> showMenu);

    /// Each tells the hosts only when something changed.
    void setIcon(const QString &name, const QList<DBusPixmap> &pixmaps);
    void setLabel(const QString &label);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("pavonel"); }
    QString title() const { return QStringLiteral("Pavonel"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconThemePath() const { return iconThemePath_; }
    QString iconName() const { return iconName_; }
    QList<DBusPixmap> iconPixmap() const { return pixmaps_; }
    QString noName() const { return {}; }
    QList<DBusPixmap> noPixmap() const { return {}; }
    DBusToolTip toolTip() const { return {iconName_, {}, title(), label_}; }
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return QDBusObjectPath(menuPath); }
    QString label() const { return label_; }
    QString labelGuide() const { return QStringLiteral("000m"); }

public Q_SLOTS:
    void Activate(int x, int y) { showMenu_(QPoint(x, y)); }
    void ContextMenu(int x, int y) { showMenu_(QPoint(x, y)); }
    void SecondaryActivate(int, int) {}
    void Scroll(int, const QString &) {}

Q_SIGNALS:
    void NewIcon();
    void NewToolTip();
    void XAyatanaNewLabel(const QString &label, const QString &guide);

private:
    std::function<void(QPoint)> showMenu_;
    QString iconThemePath_;
    QString iconName_;
    QList<DBusPixmap> pixmaps_;
    QString label_;
};

} // namespace pavonel

Q_DECLARE_METATYPE(pavonel::DBusPixmap)
Q_DECLARE_METATYPE(pavonel::DBusToolTip)
