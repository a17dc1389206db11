#include "UI/Controls/AccessibleControl.h"

#include <QAccessible>
#include <QWidget>

namespace pavonel {

namespace {

QAccessibleInterface *makeFor(const QString &, QObject *object) {
    auto *control = dynamic_cast<AccessibleControl *>(object);
    return control ? control->makeAccessible() : nullptr;
}

} // namespace

AccessibleControl::AccessibleControl() {
    static const bool installed = [] {
        QAccessible::installFactory(makeFor);
        return true;
    }();
    static_cast<void>(installed);
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
