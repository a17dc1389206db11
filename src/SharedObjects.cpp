// The objects that the whole program shares, over the platform that was installed: made when first asked for,
// and never destroyed, as that is not.
#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/Settings.h"
#include "Core/Stats.h"
#include "Core/Updater.h"
#include "Platform/Platform.h"

namespace pavonel {

Settings &Settings::shared() {
    static Settings &settings = *new Settings(*Platform::current().defaults, *Platform::current().mainLoop);
    return settings;
}

Stats &Stats::shared() {
    static Stats &stats = *new Stats(*Platform::current().defaults, *Platform::current().mainLoop);
    return stats;
}

HotKeyManager &HotKeyManager::shared() {
    static HotKeyManager &manager =
        *new HotKeyManager(*Platform::current().hotKeys, *Platform::current().mainLoop);
    return manager;
}

Phone &Phone::shared() {
    const Platform &platform = Platform::current();
    static Phone &phone =
        *new Phone(*platform.http, *platform.mainLoop, *platform.defaults, serviceAddress().value());
    return phone;
}

Updater &Updater::shared() {
    static Updater &updater = *new Updater(Platform::current(), feedAddress().value());
    return updater;
}

} // namespace pavonel
