#pragma once

#include "UI/Controls/Look.h"

class QWidget;

namespace pavonel {

class Stats;

/// The figures of the last seven days and their chart, kept up to date.
struct WeekParts {
    Stats &stats;

    QWidget *make(Look &look) const;
};

/// A button that forgets all statistics at once. For as long as the page is shown it can be undone; what was
/// counted since is kept then.
struct ResetRow {
    Stats &stats;

    QWidget *make(Look &look) const;
};

} // namespace pavonel
