#include "support/Scenario.h"

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(BreakController, the_road_of_one_break) {
    Scenario s;

    s.advance(1169);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.events, QStringList());

    s.advance(1); // after 1,170 s the heads-up
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
    EXPECT_EQ(s.events, QStringList{QStringLiteral("1170 heads-up Micro break")});

    s.advance(29);
    EXPECT_EQ(s.controller.next()->remaining, 1);

    s.advance(1); // after 1,200 s the break
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    EXPECT_EQ(s.controller.breakTitle, QStringLiteral("Micro break"));
    EXPECT_TRUE(Settings::defaultMessages().contains(s.controller.breakMessage));
    EXPECT_EQ(s.controller.breakRemaining, 20);
    EXPECT_EQ(s.platform.fakeSounds.played, QStringList{QStringLiteral("Submarine")});
    EXPECT_EQ(s.relay.told, QStringList{QStringLiteral("start Micro break \"Micro break\" 20")});

    s.advance(5);
    EXPECT_EQ(s.controller.breakRemaining, 15);
    EXPECT_EQ(s.stats.today().breakSeconds, 5);

    s.advance(15); // after 1,220 s counting
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.controller.currentBreak.get(), std::nullopt);
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 1200);
    EXPECT_EQ(s.platform.fakeSounds.played,
              (QStringList{QStringLiteral("Submarine"), QStringLiteral("Glass")}));
    EXPECT_EQ(s.relay.told.last(), QStringLiteral("end"));
    EXPECT_EQ(s.stats.today(), (Day{.micro = 1, .screenSeconds = 1200, .breakSeconds = 20}));

    EXPECT_EQ(s.events, (QStringList{
                            QStringLiteral("1170 heads-up Micro break"),
                            QStringLiteral("1200 heads-up withdrawn"),
                            QStringLiteral("1200 start Micro break"),
                            QStringLiteral("1220 end"),
                        }));
}

TEST(BreakController, the_first_hour_of_a_day_with_the_defaults) {
    Scenario s;
    s.advance(3600 + 2 * 20 + 20);
    EXPECT_EQ(s.events, (QStringList{
                            QStringLiteral("1170 heads-up Micro break"),
                            QStringLiteral("1200 heads-up withdrawn"),
                            QStringLiteral("1200 start Micro break"),
                            QStringLiteral("1220 end"),
                            QStringLiteral("1820 wellness Check your posture — shoulders back, screen at eye "
                                           "level. [figure.stand]"),
                            QStringLiteral("2390 heads-up Micro break"),
                            QStringLiteral("2420 heads-up withdrawn"),
                            QStringLiteral("2420 start Micro break"),
                            QStringLiteral("2440 end"),
                            QStringLiteral("3610 heads-up Micro break"),
                            QStringLiteral("3640 wellness Check your posture — shoulders back, screen at eye "
                                           "level. [figure.stand]"),
                            QStringLiteral("3640 heads-up withdrawn"),
                            QStringLiteral("3640 start Micro break"),
                            QStringLiteral("3660 end"),
                        }));
    // The long break was due on the same second; it comes one counted second after the micro break that won.
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::long_);
}

} // namespace pavonel::test
