#pragma once

#include "Platform/DisplayServices.h"
#include "Platform/SensorServices.h"

#include <QString>
#include <QWidget>

#include <vector>

namespace pavonel {

class DesktopExtension;
class HotKeyManager;
class InstalledApplications;
class LoginItem;
class Phone;
class Pointer;
class PowerEvents;
class ProcessLauncher;
class ScrollArea;
class Settings;
class Sounds;
class Stats;
class StatusItem;
class Updater;
class UserDefaults;

/// The pages of the settings window, in the order of its sidebar.
enum class Page { breaks, planned, phone, pausing, appearance, wellness, stats, advanced };

/// What the pages show and change. All of it outlives the settings window.
struct PageContext {
    DisplayServices display;
    SensorServices sensors;
    Pointer &pointer;
    InstalledApplications &installedApplications;
    Sounds &sounds;
    ProcessLauncher &processes;
    LoginItem &loginItem;
    DesktopExtension &desktopExtension;
    PowerEvents &power;
    StatusItem &statusItem;
    UserDefaults &defaults;
    Settings &settings;
    Stats &stats;
    Phone &phone;
    HotKeyManager &hotKeys;
    Updater &updater;
};

/// The content of each page, from top to bottom, under its title: cards and rows, no logic. Each stands in a
/// file of its own under Pages/.
QWidgetList breaksPage(PageContext &context);
QWidgetList plannedPage(PageContext &context);
QWidgetList phonePage(PageContext &context);
QWidgetList pausingPage(PageContext &context);
QWidgetList appearancePage(PageContext &context);
QWidgetList wellnessPage(PageContext &context);
QWidgetList statsPage(PageContext &context);
QWidgetList advancedPage(PageContext &context);

/// What the window shows of a page.
struct PageEntry {
    Page page;
    QString id; ///< The case's name.
    QString title;
    QString symbol;
    QString subtitle;
    QWidgetList (*content)(PageContext &context);
};

/// In the order of `Page`.
const std::vector<PageEntry> &allPages();

/// Its title, its subtitle, and its cards in a column that scrolls.
ScrollArea *makePage(Page page, PageContext &context);

} // namespace pavonel
