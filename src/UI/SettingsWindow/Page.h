#pragma once

#include "UI/SettingsWindow/Rows/Element.h"

#include <QString>

#include <vector>

namespace pavonel {

class BreakController;
class HotKeyManager;
class Phone;
class Settings;
class Stats;
class Updater;
struct Platform;

/// The pages of the settings window, in the order of its sidebar.
enum class Page { breaks, planned, phone, pausing, appearance, wellness, stats, advanced };

/// What the pages show and change. All of it outlives the settings window.
struct PageContext {
    Platform &platform;
    BreakController &controller;
    Settings &settings;
    Stats &stats;
    Phone &phone;
    HotKeyManager &hotKeys;
    Updater &updater;
};

/// What the window shows of a page.
struct PageEntry {
    Page page;
    QString id; ///< The case's name.
    QString title;
    QString symbol;
    QString subtitle;
    Elements (*content)(PageContext &context);
};

/// In the order of `Page`.
const std::vector<PageEntry> &allPages();

const PageEntry &entryOf(Page page);

} // namespace pavonel
