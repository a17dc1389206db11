#pragma once

#include "UI/Controls/ScrollArea.h"
#include "UI/SettingsWindow/Page.h"

namespace pavonel {

/// One page: its title, its subtitle, and its cards in a column that scrolls.
class PageView : public ScrollArea {
public:
    PageView(const PageEntry &entry, PageContext &context);

    /// Lets every row show what its setting is now.
    void refresh();
};

} // namespace pavonel
