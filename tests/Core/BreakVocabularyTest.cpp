#include "Core/BreakVocabulary.h"

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(BreakVocabulary, a_pause_reason_in_other_letters_is_none) {
    EXPECT_FALSE(pauseReason(QStringLiteral("fullscreen app")));
    EXPECT_EQ(pauseReason(QStringLiteral("Fullscreen app")), PauseReason::fullscreen);
}

} // namespace pavonel::test
