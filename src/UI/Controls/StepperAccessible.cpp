#include "UI/Controls/Stepper.h"

#include <QAccessibleWidget>

namespace pavonel {

namespace {

/// A spin box, to those who do not see it; its text is what stands beside it.
class StepperAccessible final : public QAccessibleWidget,
                                public QAccessibleValueInterface,
                                public QAccessibleTextInterface {
public:
    explicit StepperAccessible(Stepper *stepper)
        : QAccessibleWidget(stepper, QAccessible::SpinBox), stepper_(*stepper) {}

    void *interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text type) const override {
        return type == QAccessible::Value ? stepper_.valueText() : QAccessibleWidget::text(type);
    }

    QVariant currentValue() const override { return stepper_.value(); }
    void setCurrentValue(const QVariant &value) override { stepper_.moveTo(value.toDouble()); }
    QVariant minimumValue() const override { return stepper_.range().least; }
    QVariant maximumValue() const override { return stepper_.range().most; }
    QVariant minimumStepSize() const override { return stepper_.stepSize(); }

    QString text(int begin, int end) const override { return stepper_.valueText().mid(begin, end - begin); }
    int characterCount() const override { return static_cast<int>(stepper_.valueText().size()); }
    void selection(int, int *begin, int *end) const override { *begin = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint &) const override { return 0; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int *begin, int *end) const override {
        *begin = 0;
        *end = characterCount();
        return {};
    }

    QStringList actionNames() const override {
        return QStringList{increaseAction(), decreaseAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &action) override {
        if (action == increaseAction())
            stepper_.step(Stepper::Direction::up);
        else if (action == decreaseAction())
            stepper_.step(Stepper::Direction::down);
        else
            QAccessibleWidget::doAction(action);
    }

private:
    Stepper &stepper_;
};

} // namespace

QAccessibleInterface *Stepper::makeAccessible() {
    return new StepperAccessible(this);
}

/// Screen readers speak a spin box's new text, not its number.
void Stepper::reportValue(const QString &textBefore) {
    QAccessibleValueChangeEvent number(this, value_);
    QAccessible::updateAccessibility(&number);
    QAccessibleTextUpdateEvent text(this, 0, textBefore, valueText());
    QAccessible::updateAccessibility(&text);
}

} // namespace pavonel
