#pragma once

#include <QAbstractButton>
#include <QAccessibleWidget>

#include <functional>
#include <utility>

namespace pavonel {

/// What assistive technology is told of a button that is an entry of a list.
class ListItemAccessible final : public QAccessibleWidget {
public:
    ListItemAccessible(QAbstractButton &item, std::function<bool()> isSelected)
        : QAccessibleWidget(&item, QAccessible::ListItem), item_(item), isSelected_(std::move(isSelected)) {}

    QString text(QAccessible::Text type) const override {
        return type == QAccessible::Name ? item_.text() : QAccessibleWidget::text(type);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        state.selectable = true;
        state.selected = isSelected_();
        return state;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString &action) override {
        if (action == pressAction())
            item_.click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    QAbstractButton &item_;
    std::function<bool()> isSelected_;
};

} // namespace pavonel
