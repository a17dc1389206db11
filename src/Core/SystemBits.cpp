#include "Core/SystemBits.h"

namespace pavonel {

std::optional<QString> LaunchAtLogin::set(LoginItem &item, bool enabled) {
    return item.setEnabled(enabled);
}

void SoundPlayer::play(Sounds &sounds, const QString &name) {
    if (name.isEmpty() || name == u"None")
        return;
    sounds.play(name);
}

void Automation::run(ProcessLauncher &processes, const QString &script) {
    const QString text = script.trimmed();
    const auto shortcutPrefix = QStringLiteral("shortcut:");
    const auto scriptRunner = QStringLiteral("/usr/bin/osascript");
    if (text.isEmpty())
        return;
    if (text.startsWith(shortcutPrefix)) {
        // What stands after the colon is the name to the letter, a leading blank included.
        processes.launch(QStringLiteral("/usr/bin/shortcuts"),
                         {QStringLiteral("run"), text.sliced(shortcutPrefix.size())});
    } else if (text.endsWith(u".scpt") || text.endsWith(u".applescript")) {
        processes.launch(scriptRunner, {text});
    } else {
        processes.launch(scriptRunner, {QStringLiteral("-e"), text});
    }
}

} // namespace pavonel
