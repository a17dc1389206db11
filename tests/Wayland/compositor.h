#pragma once

#include "support/Sway.h"

namespace pavonel::test {

/// The compositor on which the tests of this program run, Qt included: two outputs side by side. Tests leave
/// it as they found it.
Sway &compositor();

} // namespace pavonel::test
