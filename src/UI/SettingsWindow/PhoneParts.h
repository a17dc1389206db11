#pragma once

#include "UI/SettingsWindow/Piece.h"

namespace pavonel {

class Phone;

/// What there is to see and to do about the phone in its present state.
Pieces phoneParts(Phone &phone);

} // namespace pavonel
