#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"

#include <QStringList>
#include <QWidget>

#include <functional>

namespace pavonel {

class PopUpItem;

/// The list that a pop-up button opens. Closes, and goes, with a choice, with Escape, and with a click beside
/// it.
class PopUpList : public QWidget, public AccessibleControl {
public:
    PopUpList(Look &look, const QStringList &choices, const QString &current, QWidget *button);

    std::function<void(const QString &)> onChoice;

    /// Below `button`, a rectangle on the desktop, or above it where there is more room.
    void openAt(const QRect &button);

    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    int edge() const; ///< Of the window around the list.
    void take(const QString &choice);
    void move(int by);
    void moveTo(const QString &beginning);

    Look &look_;
    std::vector<PopUpItem *> items_;
};

} // namespace pavonel
