#pragma once

#include "UI/SettingsWindow/Piece.h"

#include <QString>

#include <vector>

namespace pavonel {

struct PageContext;

/// The pages of the settings window, in the order of its sidebar.
enum class Page { breaks, planned, phone, pausing, appearance, wellness, stats, advanced };

/// What the window shows of a page.
struct PageEntry {
    Page page;
    QString id; ///< The case's name.
    QString title;
    QString symbol;
    QString subtitle;
    Pieces (*content)(PageContext &context);
};

/// In the order of `Page`.
const std::vector<PageEntry> &allPages();

const PageEntry &entryOf(Page page);

} // namespace pavonel
