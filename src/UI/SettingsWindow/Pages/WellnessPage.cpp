#include "Core/Settings.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Rows/Rows.h"

namespace pavonel {

using namespace Qt::StringLiterals;

QWidgetList wellnessPage(PageContext &context) {
    Settings &settings = context.settings;
    return {
        card(u"Posture"_s, u"Shoulders back, screen at eye level"_s,
             {
                 switchRow(u"Enabled"_s, settings.postureEnabled),
                 enabledWhile([&settings] { return settings.postureEnabled.get(); },
                              stepRow(u"Every"_s, settings.postureInterval, {300, 7200}, 300)),
             }),
        card(u"Blinking"_s, u"Screens make you blink less"_s,
             {
                 switchRow(u"Enabled"_s, settings.blinkEnabled),
                 enabledWhile([&settings] { return settings.blinkEnabled.get(); },
                              stepRow(u"Every"_s, settings.blinkInterval, {60, 3600}, 60)),
             }),
        pageNote(u"Reminders appear as a small strip at the top of the screen for a few seconds. Nothing to "
                 "click, and they never show during a break."_s),
    };
}

} // namespace pavonel
