#pragma once

#include "UI/Controls/Visuals.h"

#include <QString>

#include <functional>

class QWidget;

namespace pavonel {

/// A row with a field to write an entry in and a button that adds it, as Return does. The entry comes without
/// blanks around it; what is only blanks is not added.
struct AddField {
    QString prompt;
    QString button; ///< What a screen reader calls the button.
    std::function<void(const QString &)> add;
    std::function<QWidget *(Visuals &)> before = {}; ///< What stands before the field, where something does.

    QWidget *make(Visuals &visuals) const;
};

} // namespace pavonel
