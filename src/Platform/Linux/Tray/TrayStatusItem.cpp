#include "Platform/Linux/Tray/TrayStatusItem.h"

#include <QKeySequence>

#include <utility>

namespace pavonel {

namespace {

/// Nobody tells the colour of the menu bar. On a dark desktop it is dark; on a light one it can be either, so
/// there the icon is a grey that reads on both.
QColor iconColour(bool darkDesktop) {
    return darkDesktop ? QColor(0xE8, 0xE8, 0xEA) : QColor(0x86, 0x86, 0x8C);
}

void fill(QMenu &menu, const Menu &items) {
    for (const MenuItem &item : items) {
        QString title = item.title;
        title.replace(u'&', QStringLiteral("&&"));
        if (item.kind == MenuItem::Kind::separator) {
            menu.addSeparator();
        } else if (item.kind == MenuItem::Kind::submenu) {
            fill(*menu.addMenu(title), item.submenu);
        } else {
            QAction *action = menu.addAction(title);
            action->setEnabled(item.kind == MenuItem::Kind::command);
            if (!item.keyEquivalent.isEmpty())
                action->setShortcut(QKeySequence(QStringLiteral("Ctrl+") + item.keyEquivalent));
            if (item.action)
                QObject::connect(action, &QAction::triggered, action, item.action, Qt::QueuedConnection);
        }
    }
}

} // namespace

TrayStatusItem::TrayStatusItem(const QDBusConnection &bus, const QString &iconFolder, Appearance &appearance,
                               const std::shared_ptr<X11Connection> &x)
    : appearance_(appearance),
      notifier_(
          bus, iconFolder, [this] { chooseTray(); }, [this](QPoint place) { showMenu(place); }) {
    if (x) {
        embedded_ = std::make_unique<EmbeddedTray>(
            x, [this] { chooseTray(); }, [this](QPoint place) { showMenu(place); });
    }
    chooseTray();
}

void TrayStatusItem::chooseTray() {
    if (embedded_)
        embedded_->setVisible(!notifier_.isPresent());
}

QString TrayStatusItem::limitation() const {
    if (notifier_.isPresent() || (embedded_ && embedded_->isPresent()))
        return {};
    return QStringLiteral("This desktop shows no menu-bar items; start Pavonel again to open its settings.");
}

void TrayStatusItem::setIcon(const QString &name, const std::vector<QImage> &images) {
    std::vector<QImage> coloured;
    coloured.reserve(images.size());
    for (const QImage &image : images)
        coloured.push_back(tinted(image, iconColour(appearance_.wishes().dark)));
    notifier_.setIcon(name, coloured);
    if (embedded_)
        embedded_->setIcon(images);
}

void TrayStatusItem::setTitle(const QString &title) {
    notifier_.setTitle(title);
    if (embedded_)
        embedded_->setTitle(title);
}

void TrayStatusItem::setMenu(std::function<Menu()> makeMenu) {
    makeMenu_ = makeMenu;
    notifier_.setMenu(std::move(makeMenu));
}

void TrayStatusItem::showMenu(QPoint place) {
    if (!makeMenu_)
        return;
    openMenu_ = std::make_unique<QMenu>();
    fill(*openMenu_, makeMenu_());
    openMenu_->popup(place);
}

} // namespace pavonel
