#include "Core/Settings.h"
#include "UI/SettingsWindow/PageContext.h"
#include "UI/SettingsWindow/Pages/Pages.h"
#include "UI/SettingsWindow/PlannedList.h"
#include "UI/SettingsWindow/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Pieces plannedPage(PageContext &context) {
    Settings &settings = context.settings;
    const auto added = std::make_shared<bool>(false);
    const auto add = [&settings, added] {
        PlannedBreaks breaks = settings.plannedBreaks;
        breaks.emplace_back();
        settings.plannedBreaks = std::move(breaks);
        *added = true;
    };
    return {
        Card{u"Your schedule"_s,
             u"Planned breaks still wait for meetings, calls and focus apps"_s,
             {PlannedList{settings, added}}},
        ButtonRow{u"Add planned break"_s, add, u"plus"_s},
    };
}

} // namespace pavonel
