#include "UI/SettingsWindow/ShortcutWords.h"

#include "Core/HotKeys.h"
#include "Core/Settings.h"

#include <QStringList>

#include <algorithm>

namespace pavonel {

namespace {

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

} // namespace

QString shortcutWords(const Settings &settings, const HotKeyManager &hotKeys) {
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

} // namespace pavonel
