#include "Core/DaySums.h"

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(DaySums, leave_out_what_makes_no_sense) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr Seconds hour = 3600;
    const Day damaged{-4, most, 0, 0, 1e300, std::numeric_limits<Seconds>::quiet_NaN()};
    const Day other{3, most, 1, 2, 2 * hour, 60};
    EXPECT_EQ(sum(plausible(damaged), plausible(other)), (Day{3, most, 1, 2, 27 * hour, 60}));
}

} // namespace pavonel::test
