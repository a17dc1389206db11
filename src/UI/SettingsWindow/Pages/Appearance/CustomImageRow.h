#pragma once

class QWidget;

namespace pavonel {

class Visuals;
class Settings;

/// The user's picture for the break screen: in small, with its name or what is the matter with it, and ways
/// to choose another one and to do without.
struct CustomImageRow {
    Settings &settings;

    QWidget *make(Visuals &visuals) const;
};

} // namespace pavonel
