#include "Platform/Linux/Tray/TrayMenu.h"

#include <QGuiApplication>
#include <QKeySequence>
#include <QMouseEvent>
#include <QScreen>
#include <QStyleHints>

#include <algorithm>

namespace pavonel {

namespace {

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

/// The first of `length` places in a row, as near to `wanted` as the room lets it; the room's own first one
/// where it does not fit.
int within(int first, int last, int length, int wanted) {
    return std::max(first, std::min(wanted, last - length + 1));
}

} // namespace

TrayMenu::TrayMenu(const Menu &items) {
    fill(*this, items);
}

void TrayMenu::openAt(const TrayPlace &place) {
    const QScreen *screen = QGuiApplication::screenAt(place.item.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    openedFrom_ = QCursor::pos();
    sinceOpening_.start();
    popup(corner(place, sizeHint(), screen->geometry()));
}

QPoint TrayMenu::corner(const TrayPlace &place, QSize menu, const QRect &screen) {
    const QRect &panel = place.panel;
    QPoint corner = place.item.topLeft();
    const bool upright = panel.height() > panel.width();
    if (upright && panel.center().x() < screen.center().x())
        corner.setX(panel.right() + 1);
    else if (upright)
        corner.setX(panel.left() - menu.width());
    else if (panel.center().y() < screen.center().y())
        corner.setY(panel.bottom() + 1);
    else
        corner.setY(panel.top() - menu.height());
    return {within(screen.left(), screen.right(), menu.width(), corner.x()),
            within(screen.top(), screen.bottom(), menu.height(), corner.y())};
}

/// Where the room is small the menu can open below the pointer. Until the pointer has moved, its buttons
/// choose nothing there, and the second half of a double click beside the menu does not close it.
bool TrayMenu::isOpeningGesture(const QMouseEvent &event) {
    const auto &hints = *QGuiApplication::styleHints();
    const QPoint way = event.globalPosition().toPoint() - openedFrom_;
    if (way.manhattanLength() >= hints.startDragDistance())
        opening_ = false;
    return opening_ && (rect().contains(event.position().toPoint()) ||
                        !sinceOpening_.hasExpired(hints.mouseDoubleClickInterval()));
}

void TrayMenu::mousePressEvent(QMouseEvent *event) {
    if (!isOpeningGesture(*event))
        QMenu::mousePressEvent(event);
}

void TrayMenu::mouseReleaseEvent(QMouseEvent *event) {
    if (!isOpeningGesture(*event))
        QMenu::mouseReleaseEvent(event);
}

} // namespace pavonel
