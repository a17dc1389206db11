#include "UI/Controls/AccessibleControl.h"

#include <QAccessible>

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

} // namespace pavonel
