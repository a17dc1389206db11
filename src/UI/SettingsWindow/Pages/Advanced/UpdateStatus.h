#pragma once

#include "UI/SettingsWindow/Rows/Element.h"

namespace pavonel {

class Updater;

/// The version that runs, how it stands with newer ones, and what can be done about that now.
Element updateStatus(Updater &updater);

} // namespace pavonel
