#pragma once

#include "Platform/IdleTime.h"

#include <memory>

namespace pavonel {

class X11Connection;

namespace x11 {

/// The X server's own count since the last input. The server tells when somebody goes away and comes back
/// (SYNC extension), so that reading costs no wake-up; a spell of less than five seconds reads as 0. An old
/// server is asked each time. Null where the server does not count.
std::unique_ptr<IdleTime> makeIdleTime(std::shared_ptr<X11Connection> connection);

/// The same from an old server (screen saver extension).
std::unique_ptr<IdleTime> makeQueriedIdleTime(std::shared_ptr<X11Connection> connection);

} // namespace x11

} // namespace pavonel
