#pragma once

#include "Platform/MainLoop.h"
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

    /// Over `button`, a rectangle on the desktop: the current item lies on it, with its text `textInset`
    /// points from its left edge, as far as the screen goes.
    void openOver(const QRect &button, int textInset);

    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    int edge() const; ///< Of the window around the list.
    void take(const QString &choice);
    void move(int by);
    bool moveTo(const QString &beginning);
    void type(const QString &text);

    Look &look_;
    std::vector<PopUpItem *> items_;
    QString typed_; ///< In one go.
    TimerHandle pause_;
};

} // namespace pavonel
