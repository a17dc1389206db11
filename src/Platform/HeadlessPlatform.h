#pragma once

#include "Platform/HttpClient.h"
#include "Platform/Installation.h"
#include "Platform/MainLoop.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/ToolRunner.h"
#include "Platform/UserDefaults.h"

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

/// What of this system's answers needs an application object, but no display. Beside a running Pavonel, whose
/// store it then is, nothing is stored.
HeadlessPlatform makeHeadlessPlatform();

} // namespace pavonel
