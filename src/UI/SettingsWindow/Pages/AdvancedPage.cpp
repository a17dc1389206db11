#include "Core/Settings.h"
#include "Core/Updater.h"
#include "Platform/Platform.h"
#include "UI/SettingsWindow/LimitationNote.h"
#include "UI/SettingsWindow/LoginSwitch.h"
#include "UI/SettingsWindow/PageContext.h"
#include "UI/SettingsWindow/Pages/Pages.h"
#include "UI/SettingsWindow/ShortcutWords.h"
#include "UI/SettingsWindow/UpdateParts.h"

#include <QCoreApplication>

#include <memory>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

Card updateCard(PageContext &context) {
    Updater &updater = context.updater;
    UserDefaults &defaults = *context.platform.defaults;
    const Bound<bool> automatic([&updater] { return updater.automatic(); },
                                [&defaults](bool wanted) { defaults.set(Updater::automaticKey, wanted); });
    return Card{u"Updates"_s,
                {},
                {
                    UpdateStatus{updater, *context.platform.mainLoop},
                    SwitchRow{u"Check automatically"_s, automatic, u"Once a day, in the background"_s},
                }};
}

Card systemCard(PageContext &context) {
    Settings &settings = context.settings;
    const auto login = std::make_shared<LoginSwitch>(settings, *context.platform.loginItem);
    const auto shortcuts = [&context] {
        const QString limitation = context.platform.hotKeys->limitation();
        return limitation.isEmpty() ? shortcutWords(context.settings, context.hotKeys) : limitation;
    };
    return Card{u"System"_s,
                {},
                {
                    SwitchRow{u"Launch at login"_s,
                              {[login] { return login->isOn(); }, [login](bool on) { login->set(on); }}},
                    CardNote([login] { return login->failure(); }, Text::Style::failure),
                    CardNote([login] { return login->words(); }),
                    SwitchRow{u"Global shortcuts"_s, settings.hotKeysEnabled,
                              u"⌃⌥⌘B take a break · ⌃⌥⌘S skip · ⌃⌥⌘P pause"_s},
                    CardNote(shortcuts),
                }};
}

} // namespace

Pieces advancedPage(PageContext &context) {
    Settings &settings = context.settings;
    return {
        updateCard(context),
        systemCard(context),
        PageNote([&context] { return context.platform.statusItem->limitation(); }),
        PageNote([&context] { return context.platform.power->limitation(); }),
        Card{u"Automation"_s,
             {},
             {
                 LabeledField{u"When a break starts"_s, settings.onBreakStartScript},
                 LabeledField{u"When a break ends"_s, settings.onBreakEndScript},
                 CardNote(u"AppleScript, a .scpt path, or shortcut:Name"_s),
                 limitationNote(*context.platform.processes),
             }},
        ButtonRow{u"Quit Pavonel"_s, [] { QCoreApplication::exit(); }},
    };
}

} // namespace pavonel
