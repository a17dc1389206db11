#include "Core/Settings.h"
#include "Platform/Pointer.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Rows/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

QWidgetList breaksPage(PageContext &context) {
    Settings &settings = context.settings;
    const auto micro = [&settings] { return settings.microEnabled.get(); };
    const auto longBreak = [&settings] { return settings.longEnabled.get(); };
    const auto lenient = [&settings] { return !settings.strictMode; };
    return {
        card(u"Micro break"_s, u"The 20-20-20 rule"_s,
             {
                 switchRow(u"Enabled"_s, settings.microEnabled),
                 enabledWhile(micro, stepRow(u"Every"_s, settings.microInterval, {60, 7200}, 60)),
                 enabledWhile(micro, stepRow(u"For"_s, settings.microDuration, {5, 300}, 5)),
             }),
        card(u"Long break"_s, u"Get up and move"_s,
             {
                 switchRow(u"Enabled"_s, settings.longEnabled),
                 enabledWhile(longBreak, stepRow(u"Every"_s, settings.longInterval, {300, 14400}, 300)),
                 enabledWhile(longBreak, stepRow(u"For"_s, settings.longDuration, {60, 1800}, 60)),
             }),
        card(u"Heads-up"_s, {},
             {
                 stepRow(u"Warn me before a break"_s, settings.preNotifySeconds, {0, 300}, 5),
                 switchRow(u"Countdown follows the cursor"_s, settings.showFloatingCountdown),
                 limitationNote(context.pointer),
             }),
        card(u"Behaviour"_s, {},
             {
                 enabledWhile(lenient, switchRow(u"Breaks can be skipped"_s, settings.allowSkip)),
                 enabledWhile(lenient, switchRow(u"Breaks can be postponed"_s, settings.allowPostpone)),
                 switchRow(u"Strict mode"_s, settings.strictMode, u"No skipping, no postponing"_s),
             }),
    };
}

} // namespace pavonel
