#pragma once

#include "Platform/Appearance.h"
#include "Platform/Applications.h"
#include "Platform/AudioDevices.h"
#include "Platform/HotKeyService.h"
#include "Platform/HttpClient.h"
#include "Platform/IdleTime.h"
#include "Platform/Installation.h"
#include "Platform/InstalledApplications.h"
#include "Platform/LoginItem.h"
#include "Platform/MainLoop.h"
#include "Platform/Pointer.h"
#include "Platform/PowerEvents.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/Screens.h"
#include "Platform/Sounds.h"
#include "Platform/StatusItem.h"
#include "Platform/Termination.h"
#include "Platform/ToolRunner.h"
#include "Platform/UserDefaults.h"
#include "Platform/WindowLayers.h"
#include "Platform/WindowList.h"

#include <memory>

namespace pavonel {

/// What the program asks of an operating system and gets without a display too, one service a member. None is
/// ever null. Members go in reverse order, so a service may hold on to those above it.
struct HeadlessPlatform {
    std::unique_ptr<MainLoop> mainLoop;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<ProcessLauncher> processes;
    std::unique_ptr<ToolRunner> tools;
    std::unique_ptr<Installation> installation;
    std::unique_ptr<HttpClient> http;
};

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
    std::unique_ptr<HotKeyService> hotKeys;
    std::unique_ptr<Sounds> sounds;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<StatusItem> statusItem;

    /// The platform of this process, on which the shared objects stand. `install` comes first, once; it holds
    /// until the process ends, and so do the shared objects.
    static Platform &current();
    static void install(std::unique_ptr<Platform> platform);
};

/// What of this system's answers needs an application object, but no display. Beside a running Pavonel, whose
/// store it then is, nothing is stored.
HeadlessPlatform makeHeadlessPlatform();

/// This system's answers, chosen by probing. Needs the application object, and that the store is ours.
std::unique_ptr<Platform> makePlatform();

} // namespace pavonel
