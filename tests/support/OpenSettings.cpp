#include "support/OpenSettings.h"

#include "support/windows.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QUrl>

namespace pavonel::test {

void choose(PopUpButton &button, const QString &choice) {
    button.showPopup();
    QAbstractItemView &list = *button.view();
    list.setCurrentIndex(button.model()->index(button.findText(choice), 0));
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&list, &key);
}

QStringList choicesOf(const PopUpButton &button) {
    QStringList choices;
    for (int index = 0; index < button.count(); ++index)
        choices.append(button.itemText(index));
    return choices;
}

std::vector<QAccessibleInterface *> allBelow(QAccessibleInterface *root) {
    std::vector<QAccessibleInterface *> found;
    if (!root || root->state().invisible)
        return found;
    found.push_back(root);
    for (int i = 0; i < root->childCount(); ++i) {
        const auto below = allBelow(root->child(i));
        found.insert(found.end(), below.begin(), below.end());
    }
    return found;
}

OpenSettings::OpenSettings()
    : phone(platform.web, platform.loop, platform.fakeDefaults, QUrl(QStringLiteral("https://pair.example"))),
      updater(platform, QUrl(QStringLiteral("https://updates.example/feed"))),
      controller(PageContext{platform, platform, platform.mouse, platform.installed, platform.fakeSounds,
                             platform.launcher, platform.login, platform.extension, platform.powerEvents,
                             platform.menuBar, platform.fakeDefaults, settings, scenario.stats, phone,
                             hotKeys, updater}) {}

QWidget *OpenSettings::window() const {
    return shownWindow("Pavonel");
}

void OpenSettings::show(std::optional<Page> page) {
    controller.show(page);
    QApplication::processEvents();
    settle();
}

QAccessibleInterface *OpenSettings::find(QAccessible::Role role, const QString &name,
                                         const QString &card) const {
    QAccessibleInterface *root = QAccessible::queryAccessibleInterface(window());
    if (!card.isEmpty()) {
        for (QAccessibleInterface *group : allBelow(root)) {
            if (group->role() == QAccessible::Grouping && group->text(QAccessible::Name) == card)
                root = group;
        }
    }
    QAccessibleInterface *found = nullptr;
    for (QAccessibleInterface *candidate : allBelow(root)) {
        if (candidate->role() != role || candidate->text(QAccessible::Name) != name)
            continue;
        if (found)
            return nullptr;
        found = candidate;
    }
    return found;
}

QStringList OpenSettings::texts() const {
    QStringList found;
    for (QAccessibleInterface *candidate : allBelow(QAccessible::queryAccessibleInterface(window()))) {
        if (candidate->role() == QAccessible::StaticText || candidate->role() == QAccessible::Heading)
            found.append(candidate->text(QAccessible::Name));
    }
    return found;
}

} // namespace pavonel::test
