#include "Core/Settings.h"
#include "Platform/Platform.h"
#include "UI/SettingsWindow/FocusApps.h"
#include "UI/SettingsWindow/LimitationNote.h"
#include "UI/SettingsWindow/PageContext.h"
#include "UI/SettingsWindow/Pages/Pages.h"

namespace pavonel {

using namespace Qt::StringLiterals;

Pieces pausingPage(PageContext &context) {
    Settings &settings = context.settings;
    Platform &platform = context.platform;
    Pieces focusApps = focusAppParts(settings, *platform.installedApplications);
    focusApps.push_back(limitationNote(*platform.applications));
    return {
        Card{u"Pause automatically"_s,
             u"The timer holds while one of these is in front"_s,
             {
                 SwitchRow{u"In fullscreen apps"_s, settings.pauseOnFullscreen},
                 limitationNote(*platform.windowList),
                 SwitchRow{u"While the microphone is in use"_s, settings.pauseOnMicrophone,
                           u"Meetings and calls"_s},
                 SwitchRow{u"While video or audio is playing"_s, settings.pauseOnAudio},
                 limitationNote(*platform.audioDevices),
                 SwitchRow{u"During screen recording or sharing"_s, settings.pauseOnScreenSharing},
             }},
        Card{u"Natural breaks"_s,
             {},
             {
                 SwitchRow{u"Reset the timer when I step away"_s, settings.naturalBreakEnabled},
                 OnlyWhile{[&settings] { return settings.naturalBreakEnabled.get(); },
                           StepRow{u"After"_s, settings.idleResetSeconds, {20, 600}, 10, u"of no input"_s}},
                 limitationNote(*platform.idleTime),
             }},
        Card{u"Focus apps"_s, {}, focusApps},
    };
}

} // namespace pavonel
