#include "Platform/Linux/Wayland/WaylandIdleTime.h"

#include "Wayland/FakeCompositor.h"
#include "Wayland/compositor.h"
#include "support/VirtualInput.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr Seconds shortest = WaylandIdleTime::shortestSpell.count() / 1000.0;

/// Over the compositor that this program runs on.
TEST(WaylandIdleTimeTest, counts_from_the_last_input_and_begins_afresh_with_the_next) {
    WaylandIdleTime idle(WaylandConnection::open());
    compositor().input().press(VirtualInput::a);
    EXPECT_LT(idle.idleSeconds(), shortest);
    ASSERT_TRUE(waitUntil([&] { return idle.idleSeconds() >= shortest; }));
    const Seconds before = idle.idleSeconds();
    EXPECT_TRUE(waitUntil([&] { return idle.idleSeconds() >= before + 1; })) << "it goes on counting";
    EXPECT_EQ(idle.limitation(), QString());
    compositor().input().press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return idle.idleSeconds() == 0; }));
}

/// Over one that offers what a test says.
class OfferedIdleTimeTest : public testing::Test {
protected:
    using Kind = FakeCompositor::Notice::Kind;

    bool isAsked(std::vector<Kind> kinds) {
        return waitUntil(
            [&] { return std::ranges::equal(fake.notices(), kinds, {}, &FakeCompositor::Notice::kind); });
    }
    bool becomesIdle() {
        return waitUntil([&] { return idle.idleSeconds() >= shortest; });
    }
    bool becomesActive() {
        return waitUntil([&] { return idle.idleSeconds() == 0; });
    }
    bool isLimited() {
        return waitUntil([&] { return !idle.limitation().isEmpty() && idle.idleSeconds() == 0; });
    }

    FakeCompositor fake;
    std::shared_ptr<WaylandConnection> connection = WaylandConnection::open(fake.socket());
    WaylandIdleTime idle{connection};
};

TEST_F(OfferedIdleTimeTest, prefers_the_notice_that_no_inhibitor_silences) {
    const auto seat = fake.offerSeat();
    const auto kde = fake.offerKdeIdle();
    const auto ext = fake.offerIdleNotifier(2);
    EXPECT_TRUE(isAsked({Kind::ofInput}));
    EXPECT_EQ(fake.notices().front().milliseconds, 5000U);
    fake.tellIdle(fake.notices().front());
    EXPECT_TRUE(becomesIdle());
    fake.tellResumed(fake.notices().front());
    EXPECT_TRUE(becomesActive());
}

TEST_F(OfferedIdleTimeTest, takes_the_older_notice_where_there_is_no_better_one) {
    const auto seat = fake.offerSeat();
    const auto kde = fake.offerKdeIdle();
    ASSERT_TRUE(isAsked({Kind::kde}));
    fake.tellIdle(fake.notices().front());
    EXPECT_TRUE(becomesIdle());
    fake.tellResumed(fake.notices().front());
    EXPECT_TRUE(becomesActive());
    const auto ext = fake.offerIdleNotifier(1);
    EXPECT_TRUE(isAsked({Kind::ofScreen}));
}

TEST_F(OfferedIdleTimeTest, whoever_used_a_seat_last_is_there) {
    const auto first = fake.offerSeat();
    const auto second = fake.offerSeat();
    const auto ext = fake.offerIdleNotifier(2);
    ASSERT_TRUE(isAsked({Kind::ofInput, Kind::ofInput}));
    fake.tellIdle(fake.notices().front());
    fake.tellIdle(fake.notices().back());
    EXPECT_TRUE(becomesIdle());
    fake.tellResumed(fake.notices().back());
    EXPECT_TRUE(becomesActive());
}

TEST_F(OfferedIdleTimeTest, follows_a_seat_that_comes_late_and_goes) {
    const auto ext = fake.offerIdleNotifier(2);
    EXPECT_TRUE(isLimited()) << "nobody can be idle without a seat";
    auto seat = fake.offerSeat();
    ASSERT_TRUE(isAsked({Kind::ofInput}));
    EXPECT_EQ(idle.limitation(), QString());
    fake.tellIdle(fake.notices().front());
    EXPECT_TRUE(becomesIdle());
    seat.reset();
    EXPECT_TRUE(isLimited());
    EXPECT_TRUE(isAsked({}));
}

TEST_F(OfferedIdleTimeTest, finds_a_service_again_that_was_restarted) {
    const auto seat = fake.offerSeat();
    auto ext = fake.offerIdleNotifier(2);
    ASSERT_TRUE(isAsked({Kind::ofInput}));
    fake.tellIdle(fake.notices().front());
    EXPECT_TRUE(becomesIdle());
    ext.reset();
    EXPECT_TRUE(isLimited());
    EXPECT_TRUE(isAsked({}));
    ext = fake.offerIdleNotifier(2);
    ASSERT_TRUE(isAsked({Kind::ofInput}));
    EXPECT_EQ(idle.idleSeconds(), 0);
    fake.tellIdle(fake.notices().front());
    EXPECT_TRUE(becomesIdle());
}

TEST_F(OfferedIdleTimeTest, outlives_notices_that_make_no_sense) {
    const auto seat = fake.offerSeat();
    const auto ext = fake.offerIdleNotifier(2);
    ASSERT_TRUE(isAsked({Kind::ofInput}));
    fake.tellResumed(fake.notices().front());
    fake.tellIdle(fake.notices().front());
    fake.tellIdle(fake.notices().front());
    EXPECT_TRUE(becomesIdle());
    fake.tellResumed(fake.notices().front());
    EXPECT_TRUE(becomesActive());
}

TEST_F(OfferedIdleTimeTest, a_compositor_that_ends_the_connection_leaves_everybody_present) {
    const auto seat = fake.offerSeat();
    const auto ext = fake.offerIdleNotifier(2);
    ASSERT_TRUE(isAsked({Kind::ofInput}));
    fake.tellIdle(fake.notices().front());
    ASSERT_TRUE(becomesIdle());
    fake.accuse();
    EXPECT_TRUE(isLimited());
    EXPECT_FALSE(connection->isAlive());
}

} // namespace

} // namespace pavonel::test
