#include "Core/Settings.h"
#include "Platform/Applications.h"
#include "Platform/AudioDevices.h"
#include "Platform/IdleTime.h"
#include "Platform/InstalledApplications.h"
#include "Platform/WindowList.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/ListRow.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Pausing/AppChooser.h"
#include "UI/SettingsWindow/Rows/Rows.h"

#include <optional>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

/// Shows focus apps by their names. What is installed is looked up when the first is shown.
std::function<ListRow::Entry(const QString &)> entriesOf(InstalledApplications &applications) {
    const auto installed = std::make_shared<std::optional<std::vector<InstalledApplication>>>();
    return [installed, &applications](const QString &identifier) -> ListRow::Entry {
        if (!*installed)
            *installed = applications.all();
        const auto found =
            std::ranges::find(**installed, identifier, &InstalledApplication::bundleIdentifier);
        const bool known = found != (*installed)->end();
        const InstalledApplication shown = known ? *found : InstalledApplication{identifier, identifier};
        return {shown.name, known ? identifier : QString(), appIcon(applications, shown)};
    };
}

QWidgetList focusAppParts(Settings &settings, InstalledApplications &applications) {
    const auto add = [&settings](const QString &identifier) {
        if (const QStringList apps = settings.deepFocusApps; !apps.contains(identifier))
            settings.deepFocusApps = apps + QStringList(identifier);
    };
    auto *choose = new Button(u"Choose app…"_s);
    QObject::connect(choose, &Button::clicked, choose,
                     [&applications, choose, add] { chooseApplication(applications, *choose, add); });
    return {textList(settings.deepFocusApps, {u"None yet"_s, entriesOf(applications)}),
            addField(u"or a bundle id"_s, u"Add the bundle id"_s, add, choose)};
}

} // namespace

QWidgetList pausingPage(PageContext &context) {
    Settings &settings = context.settings;
    const SensorServices &sensors = context.sensors;
    return {
        card(u"Pause automatically"_s, u"The timer holds while one of these is in front"_s,
             {
                 switchRow(u"In fullscreen apps"_s, settings.pauseOnFullscreen),
                 limitationNote(sensors.windowList),
                 switchRow(u"While the microphone is in use"_s, settings.pauseOnMicrophone,
                           u"Meetings and calls"_s),
                 switchRow(u"While video or audio is playing"_s, settings.pauseOnAudio),
                 limitationNote(sensors.audioDevices),
                 switchRow(u"During screen recording or sharing"_s, settings.pauseOnScreenSharing),
             }),
        card(
            u"Natural breaks"_s, {},
            {
                switchRow(u"Reset the timer when I step away"_s, settings.naturalBreakEnabled),
                enabledWhile([&settings] { return settings.naturalBreakEnabled.get(); },
                             stepRow(u"After"_s, settings.idleResetSeconds, {20, 600}, 10, u"of no input"_s)),
                limitationNote(sensors.idleTime),
            }),
        card(u"Focus apps"_s, {},
             focusAppParts(settings, context.installedApplications) << limitationNote(sensors.applications)),
    };
}

} // namespace pavonel
