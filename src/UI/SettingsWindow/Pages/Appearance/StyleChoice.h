#pragma once

class QWidget;

namespace pavonel {

class Visuals;
class Settings;

/// The themes of the break screen to choose from, beside the break screen as it would be now.
struct StyleChoice {
    Settings &settings;

    QWidget *make(Visuals &visuals) const;
};

} // namespace pavonel
