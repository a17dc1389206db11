#pragma once

#include "UI/SettingsWindow/Rows/Element.h"

/// The content of each page, from top to bottom, under its title. One file a page: cards and rows, no logic.
namespace pavonel {

struct PageContext;

Elements breaksPage(PageContext &context);
Elements plannedPage(PageContext &context);
Elements phonePage(PageContext &context);
Elements pausingPage(PageContext &context);
Elements appearancePage(PageContext &context);
Elements wellnessPage(PageContext &context);
Elements statsPage(PageContext &context);
Elements advancedPage(PageContext &context);

} // namespace pavonel
