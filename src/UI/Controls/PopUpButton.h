#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/ControlButton.h"

#include <QPointer>
#include <QStringList>

#include <functional>

namespace pavonel {

class PopUpList;

/// Shows the choice that holds and opens a list of all of them.
class PopUpButton : public ControlButton, public AccessibleControl {
public:
    PopUpButton(Look &look, const QString &name, QStringList choices);

    /// What holds need not be among the choices.
    const QString &choice() const { return choice_; }
    const QStringList &choices() const { return choices_; }

    /// Without a report; for what did not come from the user.
    void setChoice(const QString &choice);

    /// Takes one of the choices as if the user had.
    void choose(const QString &choice);

    /// While it is open.
    QWidget *list() const;

    /// Told of every choice of the user's, also of the one that held already.
    std::function<void(const QString &)> onChoice;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool isOpen() const;
    void open();

    QStringList choices_;
    QString choice_;
    QPointer<PopUpList> list_;
};

} // namespace pavonel
