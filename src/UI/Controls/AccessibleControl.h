#pragma once

#include <QAccessible>

class QWidget;

namespace pavonel {

/// Mixed into a widget that tells assistive technology itself what it is.
class AccessibleControl {
public:
    AccessibleControl();
    AccessibleControl(const AccessibleControl &) = delete;
    AccessibleControl &operator=(const AccessibleControl &) = delete;

    /// A new one, which the caller owns.
    virtual QAccessibleInterface *makeAccessible() = 0;

protected:
    ~AccessibleControl() = default;
};

/// What a widget is to assistive technology that tells all else by its accessible name and description. Comes
/// before those: by its first word a widget is known as what it is then.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

/// Tells assistive technology now what the widget says: its accessible name. Before Qt 6.8 this is an alert,
/// which not every bridge passes on.
void announce(QWidget &widget);

} // namespace pavonel
