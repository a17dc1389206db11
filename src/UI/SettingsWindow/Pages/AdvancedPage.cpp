#include "Core/Characters.h"
#include "Core/HotKeys.h"
#include "Core/LoginSwitch.h"
#include "Core/Settings.h"
#include "Core/Updater.h"
#include "Core/UpdaterStatus.h"
#include "Platform/DesktopExtension.h"
#include "Platform/MainLoop.h"
#include "Platform/PowerEvents.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/StatusItem.h"
#include "Platform/UserDefaults.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/Visuals.h"

#include <QProgressBar>

#include <algorithm>
#include <cmath>
#include <memory>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

constexpr Seconds minute = 60;
constexpr qsizetype longest = 4000; // characters of what a feed says; nobody reads on

QString shortened(const QString &text) {
    return text.size() <= longest ? text : beginning(text, longest) + u'…';
}

/// Of the height of a small line of text, so that nothing moves when it takes the place of one.
QWidget *progressBar(double progress) {
    constexpr int whole = 1000;
    auto *bar = new QProgressBar;
    bar->setAccessibleName(u"Download"_s);
    bar->setRange(0, whole);
    bar->setValue(std::isnan(progress) ? 0 : qRound(std::clamp(progress, 0.0, 1.0) * whole));
    bar->setFixedHeight(QFontMetrics(visuals().font(11)).height());
    return bar;
}

/// The version that runs, how it stands with newer ones, and what can be done about that now. Shows one
/// state; made anew for the next.
class StatusRow final : public CardRow {
public:
    explicit StatusRow(Updater &updater) : updater_(updater) {
        const Updater::State &state = updater.state;
        const bool failed = std::holds_alternative<Updater::Failed>(state);
        line_ = new Text({}, failed ? Text::Style::failure : Text::Style::note);
        std::vector<QWidget *> lines{new Text(u"Version "_s + updater.currentVersion(), Text::Style::label),
                                     line_};
        if (const auto *available = std::get_if<Updater::Available>(&state))
            lines.push_back(new Text(shortened(available->notes), Text::Style::note));
        else if (const auto *downloading = std::get_if<Updater::Downloading>(&state))
            lines.push_back(progressBar(downloading->progress));
        else if (std::holds_alternative<Updater::Idle>(state))
            minutes_ = visuals().loop().every(minute, [this] { describe(); });
        addLines(lines);
        addButton();
        describe();
    }

private:
    void addButton() {
        const Updater::State &state = updater_.state;
        const bool available = std::holds_alternative<Updater::Available>(state);
        const bool resting = std::holds_alternative<Updater::Idle>(state) ||
                             std::holds_alternative<Updater::UpToDate>(state) ||
                             std::holds_alternative<Updater::Failed>(state);
        if (!available && !resting)
            return;
        auto *button = new Button(available ? u"Install and restart"_s : u"Check now"_s,
                                  available ? ButtonRole::prominent : ButtonRole::plain);
        add(button);
        connect(button, &Button::clicked, this, [available, &updater = updater_] {
            if (available)
                updater.install();
            else
                updater.check(Updater::CheckKind::interactive);
        });
    }

    void describe() {
        line_->setText(shortened(updaterStatus(updater_, visuals().loop().now())));
        line_->setVisible(!line_->text().isEmpty());
    }

    Updater &updater_;
    Text *line_;
    TimerHandle minutes_; ///< While the line tells of a time that passes.
};

QWidget *updateCard(PageContext &context) {
    Updater &updater = context.updater;
    UserDefaults &defaults = context.defaults;
    const ValueBinding<bool> automatic(
        [&updater] { return updater.automatic(); },
        [&defaults](bool wanted) { defaults.set(Updater::automaticKey, wanted); });
    return card(u"Updates"_s, {},
                {
                    dynamicSection({&updater}, [&updater] { return QWidgetList{new StatusRow(updater)}; }),
                    switchRow(u"Check automatically"_s, automatic, u"Once a day, in the background"_s),
                });
}

/// None where the desktop has no such thing.
QWidgetList extensionRows(DesktopExtension &extension) {
    if (!extension.isPossible())
        return {};
    const ValueBinding<bool> isOn([&extension] { return extension.isOn(); },
                                  [&extension](bool on) { extension.setOn(on); });
    return {
        enabledWhile([&extension] { return extension.limitation().isEmpty(); },
                     switchRow(u"GNOME extension"_s, isOn,
                               u"Adds the item in the top bar and holding for fullscreen and focus apps"_s)),
        limitationNote(extension)};
}

QWidget *systemCard(PageContext &context) {
    Settings &settings = context.settings;
    const auto login = std::make_shared<LoginSwitch>(settings, context.loginItem);
    const auto shortcuts = [&context] {
        return shortcutNote(context.hotKeys, context.settings.hotKeysEnabled);
    };
    const QWidgetList rows{
        switchRow(u"Launch at login"_s,
                  {[login] { return login->isOn(); }, [login](bool on) { login->set(on); }}),
        cardNote([login] { return login->failure(); }, Text::Style::failure),
        cardNote([login] { return login->difference(); }),
        switchRow(u"Global shortcuts"_s, settings.hotKeysEnabled,
                  u"⌃⌥⌘B take a break · ⌃⌥⌘S skip · ⌃⌥⌘P pause"_s),
        cardNote(shortcuts),
    };
    return card(u"System"_s, {}, rows + extensionRows(context.desktopExtension));
}

} // namespace

QWidgetList advancedPage(PageContext &context) {
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
