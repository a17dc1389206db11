#include "UI/Controls/Stepper.h"

#include <QAccessibleWidget>

namespace pavonel {

namespace {

/// A spin box, to those who do not see it.
class StepperAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit StepperAccessible(Stepper *stepper)
        : QAccessibleWidget(stepper, QAccessible::SpinBox), stepper_(*stepper) {}

    void *interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text type) const override {
        // The bridge to AT-SPI passes a spin box's number on, but not its text; a description is read out
        // too.
        const bool value = type == QAccessible::Value || type == QAccessible::Description;
        return value ? stepper_.valueText() : QAccessibleWidget::text(type);
    }

    QVariant currentValue() const override { return stepper_.value(); }
    void setCurrentValue(const QVariant &value) override { stepper_.moveTo(value.toDouble()); }
    QVariant minimumValue() const override { return stepper_.range().least; }
    QVariant maximumValue() const override { return stepper_.range().most; }
    QVariant minimumStepSize() const override { return stepper_.stepSize(); }

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

void Stepper::reportValue() {
    QAccessibleValueChangeEvent event(this, value_);
    QAccessible::updateAccessibility(&event);
}

} // namespace pavonel
