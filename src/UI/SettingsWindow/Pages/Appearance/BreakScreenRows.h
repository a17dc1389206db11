#pragma once

class QWidget;

namespace pavonel {

class Settings;

/// The themes of the break screen to choose from, beside the break screen as it would be now.
QWidget *styleChoice(Settings &settings);

/// The user's picture for the break screen: in small, with its name or what is the matter with it, and ways
/// to choose another one and to do without.
QWidget *customImageRow(Settings &settings);

} // namespace pavonel
