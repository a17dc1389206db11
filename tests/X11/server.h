#pragma once

#include "support/XServer.h"

#include <QRect>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace pavonel::test {

using WindowManager = XServer::WindowManager;

inline const auto everyManager =
    testing::Values(WindowManager::openbox, WindowManager::xfwm4, WindowManager::xfwm4WithCompositor);

inline std::string managerName(const testing::TestParamInfo<WindowManager> &manager) {
    switch (manager.param) {
    case WindowManager::openbox:
        return "openbox";
    case WindowManager::xfwm4:
        return "xfwm4";
    default:
        return "xfwm4WithCompositor";
    }
}

/// Side by side on the whole server.
inline const std::vector<QRect> threeMonitors = {
    {0, 0, 1920, 1080}, {1920, 0, 1920, 1080}, {3840, 0, 1920, 1080}};

/// The X server on which the tests of this program run, 5760x1080, Qt included. Tests leave it as they found
/// it: one monitor, no window manager.
XServer &server();

/// Divides the server into monitors, and waits until Qt knows them.
void setMonitors(const std::vector<QRect> &monitors);

/// For the end of a test that changed what the others rely on.
void leaveServerAsFound();

} // namespace pavonel::test
