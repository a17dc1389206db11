#pragma once

namespace pavonel::test {

/// How long a test waits, in milliseconds, for what must come. A busy machine can be very slow: the limit is
/// only for what never comes.
constexpr int generousTimeout = 120'000;

} // namespace pavonel::test
