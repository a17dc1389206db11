#pragma once

#include "UI/Controls/Look.h"

#include <memory>

class QWidget;

namespace pavonel {

class Settings;

/// The planned breaks to edit, in the user's order, below a line that tells how many are active.
struct PlannedList {
    Settings &settings;
    std::shared_ptr<bool> added; ///< Set when the user adds one, to which the keyboard then goes.

    QWidget *make(Look &look) const;
};

} // namespace pavonel
