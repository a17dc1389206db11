#include "Core/Settings.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Rows/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Elements wellnessPage(PageContext &context) {
    Settings &settings = context.settings;
    return {
        Card{u"Posture"_s,
             u"Shoulders back, screen at eye level"_s,
             {
                 SwitchRow{u"Enabled"_s, settings.postureEnabled},
                 EnabledWhile{[&settings] { return settings.postureEnabled.get(); },
                              StepRow{u"Every"_s, settings.postureInterval, {300, 7200}, 300}},
             }},
        Card{u"Blinking"_s,
             u"Screens make you blink less"_s,
             {
                 SwitchRow{u"Enabled"_s, settings.blinkEnabled},
                 EnabledWhile{[&settings] { return settings.blinkEnabled.get(); },
                              StepRow{u"Every"_s, settings.blinkInterval, {60, 3600}, 60}},
             }},
        PageNote(u"Reminders appear as a small strip at the top of the screen for a few seconds. Nothing to "
                 "click, and they never show during a break."_s),
    };
}

} // namespace pavonel
