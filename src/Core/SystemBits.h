#pragma once

#include "Platform/LoginItem.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/Sounds.h"

#include <optional>

/// Small stateless services that reach the operating system. The platform's service comes as an argument.
namespace pavonel {

namespace LaunchAtLogin {
/// Registers or removes the program as a login item. Absent on success, otherwise one readable sentence.
std::optional<QString> set(LoginItem &item, bool enabled);
} // namespace LaunchAtLogin

namespace SoundPlayer {
/// "None" and an empty name are silent, and so is a name that the system does not know.
void play(Sounds &sounds, const QString &name);
} // namespace SoundPlayer

namespace Automation {
/// Runs the user's script: "shortcut:Name", the path of a ".scpt" or ".applescript" file, or inline source.
/// Does not wait for it; a script that cannot be started is dropped silently.
void run(ProcessLauncher &processes, const QString &script);
} // namespace Automation

} // namespace pavonel
