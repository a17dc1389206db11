#pragma once

#include <QAccessible>

class QWidget;

namespace pavonel {

/// What a widget is to assistive technology that tells all else by its accessible name and description. Comes
/// before those: by its first word a widget is known as what it is then.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

/// Tells assistive technology now what the widget says: its accessible name. Before Qt 6.8 this is an alert,
/// which not every bridge passes on.
void announce(QWidget &widget);

} // namespace pavonel
