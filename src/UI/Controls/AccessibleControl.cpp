#include "UI/Controls/AccessibleControl.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace pavonel {

namespace {

constexpr char roleProperty[] = "accessibleRole";

QAccessibleInterface *makeFor(const QString &, QObject *object) {
    if (auto *control = dynamic_cast<AccessibleControl *>(object))
        return control->makeAccessible();
    const QVariant role = object ? object->property(roleProperty) : QVariant();
    return role.isValid() ? new QAccessibleWidget(static_cast<QWidget *>(object),
                                                  static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}

void install() {
    static const bool installed = [] {
        QAccessible::installFactory(makeFor);
        return true;
    }();
    static_cast<void>(installed);
}

} // namespace

AccessibleControl::AccessibleControl() {
    install();
}

void setAccessibleRole(QWidget &widget, QAccessible::Role role) {
    install();
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
