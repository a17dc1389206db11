#pragma once

#include "Platform/Appearance.h"
#include "Platform/Applications.h"
#include "Platform/AudioDevices.h"
#include "Platform/DesktopExtension.h"
#include "Platform/DisplayServices.h"
#include "Platform/HeadlessPlatform.h"
#include "Platform/HotKeyService.h"
#include "Platform/IdleTime.h"
#include "Platform/InstalledApplications.h"
#include "Platform/LoginItem.h"
#include "Platform/Notifications.h"
#include "Platform/Pointer.h"
#include "Platform/PowerEvents.h"
#include "Platform/Screens.h"
#include "Platform/SensorServices.h"
#include "Platform/Sounds.h"
#include "Platform/StatusItem.h"
#include "Platform/Termination.h"
#include "Platform/WindowLayers.h"
#include "Platform/WindowList.h"

#include <memory>

namespace pavonel {

/// Everything the program asks of an operating system.
struct Platform : HeadlessPlatform {
    std::unique_ptr<Termination> termination;
    std::unique_ptr<PowerEvents> power;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<Pointer> pointer;
    std::unique_ptr<IdleTime> idleTime;
    std::unique_ptr<AudioDevices> audioDevices;
    std::unique_ptr<Applications> applications;
    std::unique_ptr<InstalledApplications> installedApplications;
    std::unique_ptr<WindowList> windowList;
    std::unique_ptr<WindowLayers> windowLayers;
    std::unique_ptr<Notifications> notifications;
    std::unique_ptr<HotKeyService> hotKeys;
    std::unique_ptr<Sounds> sounds;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<DesktopExtension> desktopExtension;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<StatusItem> statusItem;

    /// It can be given to who needs only a part of it.
    operator DisplayServices() const { return {*mainLoop, *screens, *windowLayers, *appearance}; }
    operator SensorServices() const {
        return {*idleTime, *audioDevices, *applications, *windowList, *screens};
    }

    /// The platform of this process, on which the shared objects stand. `install` comes first, once; it holds
    /// until the process ends, and so do the shared objects.
    static Platform &current();
    static void install(std::unique_ptr<Platform> platform);
};

/// This system's answers, chosen by probing. Needs the application object, and that the store is ours.
std::unique_ptr<Platform> makePlatform();

} // namespace pavonel
