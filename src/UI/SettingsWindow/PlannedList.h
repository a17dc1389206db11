#pragma once

#include "UI/Controls/Look.h"

class QWidget;

namespace pavonel {

class Settings;

/// The planned breaks to edit, in the user's order, below a line that tells how many are active.
struct PlannedList {
    Settings &settings;

    QWidget *make(Look &look) const;
};

} // namespace pavonel
