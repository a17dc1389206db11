#pragma once

#include "support/XServer.h"

#include <QRect>

#include <vector>

namespace pavonel::test {

/// The X server on which the tests of this program run, 5760x1080, Qt included. Tests leave it as they found
/// it: one monitor, no window manager.
XServer &server();

/// Divides the server into monitors, and waits until Qt knows them.
void setMonitors(const std::vector<QRect> &monitors);

/// For the end of a test that changed what the others rely on.
void leaveServerAsFound();

} // namespace pavonel::test
