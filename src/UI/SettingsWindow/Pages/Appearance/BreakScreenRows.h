#pragma once

#include "UI/SettingsWindow/Rows/Element.h"

namespace pavonel {

class Settings;

/// The themes of the break screen to choose from, beside the break screen as it would be now.
Element styleChoice(Settings &settings);

/// The user's picture for the break screen: in small, with its name or what is the matter with it, and ways
/// to choose another one and to do without.
Element customImageRow(Settings &settings);

} // namespace pavonel
