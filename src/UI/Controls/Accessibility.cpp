#include "UI/Controls/Accessibility.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace pavonel {

namespace {

constexpr char roleProperty[] = "accessibleRole";

class WidgetOfRole final : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = role() == QAccessible::Dialog;
        return state;
    }
};

QAccessibleInterface *makeFor(const QString &, QObject *object) {
    const QVariant role = object ? object->property(roleProperty) : QVariant();
    return role.isValid() ? new WidgetOfRole(static_cast<QWidget *>(object),
                                             static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}

} // namespace

void setAccessibleRole(QWidget &widget, QAccessible::Role role) {
    QAccessible::installFactory(makeFor); // once, however often
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void announce(QWidget &widget) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(&widget, widget.accessibleName());
#else
    QAccessibleEvent event(&widget, QAccessible::Alert);
#endif
    QAccessible::updateAccessibility(&event);
}

} // namespace pavonel
