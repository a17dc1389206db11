#pragma once

#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Updater.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/SettingsWindow/SettingsWindowController.h"
#include "support/Scenario.h"
#include "support/Styled.h"

#include <QAccessible>
#include <QWidget>

namespace pavonel::test {

/// The settings window over fakes, and ways to find what is in it as somebody does who knows only the visible
/// names.
class OpenSettings {
public:
    OpenSettings();

    Scenario scenario;
    FakePlatform &platform = scenario.platform;
    Styled styled{platform};
    Settings &settings = scenario.settings;
    Phone phone;
    HotKeyManager hotKeys{platform.keys, platform.loop};
    Updater updater;
    SettingsWindowController controller;

    /// Null while it is not shown.
    QWidget *window() const;

    /// Shows the page and lets the loop run.
    void show(std::optional<Page> page = {});

    /// What waits on the loop, and what moves.
    void settle() { platform.loop.advance(1); }

    /// The one of this role and name; within the card of that title unless `card` is empty. Null when there
    /// is none, and when there is more than one.
    QAccessibleInterface *find(QAccessible::Role role, const QString &name, const QString &card = {}) const;

    /// The same as a widget of its class.
    template <class Widget>
    Widget *widget(QAccessible::Role role, const QString &name, const QString &card = {}) const {
        QAccessibleInterface *found = find(role, name, card);
        return found ? dynamic_cast<Widget *>(found->object()) : nullptr;
    }

    /// The names of all visible texts and headings, in reading order.
    QStringList texts() const;
};

/// Takes one of the choices as a user does, by the list and the keyboard.
void choose(PopUpButton &button, const QString &choice);
QStringList choicesOf(const PopUpButton &button);

/// Depth first, `root` included, the invisible left out.
std::vector<QAccessibleInterface *> allBelow(QAccessibleInterface *root);

} // namespace pavonel::test
