#include "Core/HotKeys.h"
#include "Core/Settings.h"
#include "Core/SystemBits.h"
#include "Core/Updater.h"
#include "Platform/LoginItem.h"
#include "Platform/MainLoop.h"
#include "Platform/PowerEvents.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/StatusItem.h"
#include "Platform/UserDefaults.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Advanced/UpdateStatus.h"
#include "UI/SettingsWindow/Rows/Rows.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <memory>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

/// What the switch "Launch at login" does: it writes the setting, has the system do so at once, and keeps
/// what the system said.
class LoginSwitch {
public:
    LoginSwitch(Settings &settings, LoginItem &item) : settings_(settings), item_(item) {}

    bool isOn() const { return settings_.launchAtLogin; }
    void set(bool on) {
        failure_ = LaunchAtLogin::set(item_, on).value_or(QString());
        settings_.launchAtLogin = on;
    }

    /// Why the last flip failed; empty when it did not.
    QString failure() const { return failure_; }

    /// That the system has it otherwise; empty when all is as the switch says, and after a failure.
    QString difference() const {
        if (!failure_.isEmpty())
            return {};
        if (QString limitation = item_.limitation(); !limitation.isEmpty())
            return limitation;
        if (item_.isEnabled() == isOn())
            return {};
        return isOn() ? u"At the moment Pavonel is not started at login."_s
                      : u"At the moment Pavonel is started at login all the same."_s;
    }

private:
    Settings &settings_;
    LoginItem &item_;
    QString failure_;
};

/// Of the break screen's own shortcut there is nothing to say.
bool isGlobal(std::uint32_t id) {
    return id != HotKeyManager::escapeID;
}

/// Whether they were asked for when the program started, which is when the switch takes effect.
bool wereAskedFor(const HotKeyManager &hotKeys) {
    const auto &bindings = hotKeys.bindings();
    return std::any_of(bindings.begin(), bindings.end(),
                       [](const auto &entry) { return isGlobal(entry.first); });
}

QStringList refusedLabels(const HotKeyManager &hotKeys) {
    QStringList found;
    for (const auto &[id, binding] : hotKeys.bindings()) {
        if (isGlobal(id) && !hotKeys.holds(id))
            found.append(binding.label);
    }
    return found;
}

/// What there is to say about the global shortcuts; empty when all is as the switch says.
QString shortcutNote(const Settings &settings, const HotKeyManager &hotKeys) {
    if (settings.hotKeysEnabled != wereAskedFor(hotKeys))
        return settings.hotKeysEnabled ? QStringLiteral("They work from the next start of Pavonel on.")
                                       : QStringLiteral("They work until Pavonel is next started.");
    const QStringList refused = refusedLabels(hotKeys);
    if (refused.isEmpty())
        return {};
    return refused.join(QStringLiteral(", ")) +
           QStringLiteral(" cannot be had here; another program may own ") +
           (refused.size() == 1 ? QStringLiteral("it.") : QStringLiteral("them."));
}

Element updateCard(PageContext &context) {
    Updater &updater = context.updater;
    UserDefaults &defaults = context.defaults;
    const ValueBinding<bool> automatic(
        [&updater] { return updater.automatic(); },
        [&defaults](bool wanted) { defaults.set(Updater::automaticKey, wanted); });
    return card(u"Updates"_s, {},
                {
                    updateStatus(updater),
                    switchRow(u"Check automatically"_s, automatic, u"Once a day, in the background"_s),
                });
}

Element systemCard(PageContext &context) {
    Settings &settings = context.settings;
    const auto login = std::make_shared<LoginSwitch>(settings, context.loginItem);
    const auto shortcuts = [&context] {
        const QString limitation = context.hotKeys.limitation();
        return limitation.isEmpty() ? shortcutNote(context.settings, context.hotKeys) : limitation;
    };
    return card(u"System"_s, {},
                {
                    switchRow(u"Launch at login"_s,
                              {[login] { return login->isOn(); }, [login](bool on) { login->set(on); }}),
                    cardNote([login] { return login->failure(); }, Text::Style::failure),
                    cardNote([login] { return login->difference(); }),
                    switchRow(u"Global shortcuts"_s, settings.hotKeysEnabled,
                              u"⌃⌥⌘B take a break · ⌃⌥⌘S skip · ⌃⌥⌘P pause"_s),
                    cardNote(shortcuts),
                });
}

} // namespace

Elements advancedPage(PageContext &context) {
    Settings &settings = context.settings;
    return {
        updateCard(context),
        systemCard(context),
        pageNote([&context] { return context.statusItem.limitation(); }),
        pageNote([&context] { return context.power.limitation(); }),
        card(u"Automation"_s, {},
             {
                 labeledField(u"When a break starts"_s, settings.onBreakStartScript),
                 labeledField(u"When a break ends"_s, settings.onBreakEndScript),
                 cardNote(u"AppleScript, a .scpt path, or shortcut:Name"_s),
                 limitationNote(context.processes),
             }),
        buttonRow(u"Quit Pavonel"_s, [&context] { context.display.loop.quit(0); }),
    };
}

} // namespace pavonel
