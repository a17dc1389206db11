#pragma once

#include <QComboBox>

namespace pavonel {

/// Shows the choice that holds and opens a list of all of them; `textActivated` tells of every choice of the
/// user's, also of the one that held already. A combo box that is opened, not turned, by
/// the arrow keys, and lets the page scroll by the wheel; and whose name assistive technology is told, which
/// Qt's own on Linux gives up for its value.
class PopUpButton : public QComboBox {
public:
    PopUpButton(const QString &name, const QStringList &choices);

    /// What holds need not be among the choices.
    QString choice() const;

    /// Without a report; for what did not come from the user.
    void setChoice(const QString &choice);

    bool isListShown() const;

    void showPopup() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void followAssistiveTechnology();
    void placeList(QWidget &list);

    bool listIsMade_ = false; ///< When it was first opened.
};

} // namespace pavonel
