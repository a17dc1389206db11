#pragma once

#include <QString>

namespace pavonel {

class HotKeyManager;
class Settings;

/// What there is to say about the global shortcuts as they are now; empty when all is as the switch says.
QString shortcutWords(const Settings &settings, const HotKeyManager &hotKeys);

} // namespace pavonel
