#pragma once

#include "UI/SettingsWindow/Rows/Piece.h"

/// The content of each page, from top to bottom, under its title. One file a page: cards and rows, no logic.
namespace pavonel {

struct PageContext;

Pieces breaksPage(PageContext &context);
Pieces plannedPage(PageContext &context);
Pieces phonePage(PageContext &context);
Pieces pausingPage(PageContext &context);
Pieces appearancePage(PageContext &context);
Pieces wellnessPage(PageContext &context);
Pieces statsPage(PageContext &context);
Pieces advancedPage(PageContext &context);

} // namespace pavonel
