#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"

#include <QWidget>

#include <functional>

class QLineEdit;

namespace pavonel {

/// A line of text to edit.
class TextField : public QWidget, public AccessibleControl {
public:
    /// `name` is what a screen reader says; `prompt` is shown while the field is empty.
    TextField(Look &look, const QString &name, const QString &prompt = {});

    QString text() const;

    /// Without a report, and only when the text is another one, so that the cursor of somebody who types
    /// stays where it is.
    void setText(const QString &text);

    std::function<void(const QString &)> onEdit; ///< With every character.
    std::function<void()> onReturn;              ///< The key; optional.

    QSize sizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QRect body() const;
    void takeColours();
    void showMenu(QPoint where);

    Look &look_;
    QLineEdit *edit_;
};

} // namespace pavonel
