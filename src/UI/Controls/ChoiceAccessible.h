#pragma once

#include <QAbstractButton>
#include <QAccessibleWidget>

namespace pavonel {

/// What assistive technology is told of a button that is on or off.
class ChoiceAccessible final : public QAccessibleWidget {
public:
    ChoiceAccessible(QAbstractButton &button, QAccessible::Role role)
        : QAccessibleWidget(&button, role), button_(button) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = button_.isChecked();
        return state;
    }
    QStringList actionNames() const override {
        return button_.isEnabled() ? QStringList{toggleAction(), setFocusAction()} : QStringList();
    }
    void doAction(const QString &action) override {
        if (action == toggleAction())
            button_.click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    QAbstractButton &button_;
};

} // namespace pavonel
