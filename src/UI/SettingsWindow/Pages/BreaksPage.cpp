#include "Core/Settings.h"
#include "Platform/Pointer.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Rows/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Elements breaksPage(PageContext &context) {
    Settings &settings = context.settings;
    const auto micro = [&settings] { return settings.microEnabled.get(); };
    const auto longBreak = [&settings] { return settings.longEnabled.get(); };
    const auto lenient = [&settings] { return !settings.strictMode; };
    return {
        Card{u"Micro break"_s,
             u"The 20-20-20 rule"_s,
             {
                 SwitchRow{u"Enabled"_s, settings.microEnabled},
                 EnabledWhile{micro, StepRow{u"Every"_s, settings.microInterval, {60, 7200}, 60}},
                 EnabledWhile{micro, StepRow{u"For"_s, settings.microDuration, {5, 300}, 5}},
             }},
        Card{u"Long break"_s,
             u"Get up and move"_s,
             {
                 SwitchRow{u"Enabled"_s, settings.longEnabled},
                 EnabledWhile{longBreak, StepRow{u"Every"_s, settings.longInterval, {300, 14400}, 300}},
                 EnabledWhile{longBreak, StepRow{u"For"_s, settings.longDuration, {60, 1800}, 60}},
             }},
        Card{u"Heads-up"_s,
             {},
             {
                 StepRow{u"Warn me before a break"_s, settings.preNotifySeconds, {0, 300}, 5},
                 SwitchRow{u"Countdown follows the cursor"_s, settings.showFloatingCountdown},
                 limitationNote(context.pointer),
             }},
        Card{u"Behaviour"_s,
             {},
             {
                 EnabledWhile{lenient, SwitchRow{u"Breaks can be skipped"_s, settings.allowSkip}},
                 EnabledWhile{lenient, SwitchRow{u"Breaks can be postponed"_s, settings.allowPostpone}},
                 SwitchRow{u"Strict mode"_s, settings.strictMode, u"No skipping, no postponing"_s},
             }},
    };
}

} // namespace pavonel
