#pragma once

#include "Core/BreakController.h"

namespace pavonel {

/// What is going on, in one line for people, as the menu shows it: "Micro break: 12:34".
QString statusLine(const BreakController &controller, const MainLoop &loop);

} // namespace pavonel
