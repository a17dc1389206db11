#pragma once

#include "UI/SettingsWindow/Piece.h"

namespace pavonel {

class InstalledApplications;
class Settings;

/// The focus applications to see and remove, and ways to add one: from a list of those that are installed, or
/// by its identifier.
Pieces focusAppParts(Settings &settings, InstalledApplications &applications);

} // namespace pavonel
