#pragma once

#include "Platform/StatusItem.h"

#include <QElapsedTimer>
#include <QMenu>
#include <QRect>

namespace pavonel {

/// Where an item of the menu bar stands, in points.
struct TrayPlace {
    QRect item;
    QRect panel; ///< The whole bar that it is a part of.
};

/// The menu of an item, for menu bars that leave it to us to show one.
class TrayMenu final : public QMenu {
public:
    explicit TrayMenu(const Menu &items);

    /// Shows it on the side of the panel that looks into the screen.
    void openAt(const TrayPlace &place);

    /// The upper left corner of a menu of this size, within `screen` wherever it fits.
    static QPoint corner(const TrayPlace &place, QSize menu, const QRect &screen);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool isOpeningGesture(const QMouseEvent &event);

    QPoint openedFrom_; ///< Where the pointer was.
    QElapsedTimer sinceOpening_;
    bool opening_ = true;
};

} // namespace pavonel
