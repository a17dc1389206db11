#pragma once

#include "UI/SettingsWindow/Bound.h"

class QWidget;

namespace pavonel {

class Look;
class Sounds;

/// A picker of one of the system's sounds or "None". A choice is heard at once, and again with the button
/// beside it.
struct SoundRow {
    QString label;
    Bound<QString> sound;
    Sounds &sounds;

    QWidget *make(Look &look) const;
};

} // namespace pavonel
