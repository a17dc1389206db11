#pragma once

#include "support/XServer.h"

namespace pavonel::test {

/// The X server on which the tests of this program run, 5760x1080, Qt included. Tests leave it as they found
/// it: one monitor, no window manager.
XServer &server();

} // namespace pavonel::test
