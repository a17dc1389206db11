#include "Platform/Linux/Wayland/ForeignToplevels.h"

#include "Wayland/FakeCompositor.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Over a compositor that offers what a test says, and errs.
class OfferedToplevelsTest : public testing::Test {
protected:
    using State = FakeCompositor::State;

    bool isInFront(const char *name) {
        return waitUntil([&] {
            const auto front = toplevels.front();
            return front ? front->windowClass == QLatin1StringView(name) : *name == '\0';
        });
    }
    bool areFullscreen(std::size_t count) {
        return waitUntil([&] { return toplevels.fullscreen().size() == count; });
    }
    /// The first question subscribes.
    FakeCompositor::Window open() {
        EXPECT_TRUE(waitUntil([&] {
            toplevels.front();
            return fake.isAskedForToplevels();
        }));
        return fake.openWindow();
    }

    FakeCompositor fake;
    std::shared_ptr<WaylandConnection> connection = WaylandConnection::open(fake.socket());
    ForeignToplevels toplevels{connection};
};

TEST_F(OfferedToplevelsTest, nobody_is_in_front_of_a_compositor_that_offers_late_or_never_tells) {
    EXPECT_FALSE(toplevels.isTelling());
    EXPECT_FALSE(toplevels.front());
    const auto offer = fake.offerToplevels();
    EXPECT_TRUE(waitUntil([&] { return toplevels.isTelling(); }));
    const auto window = open();
    EXPECT_FALSE(toplevels.front());
    FakeCompositor::tell(window, "player", State::active);
    EXPECT_TRUE(isInFront("player"));
}

TEST_F(OfferedToplevelsTest, a_window_may_close_before_it_was_told_of_and_while_it_is_in_front) {
    const auto offer = fake.offerToplevels();
    for (int round = 0; round < 20; ++round) {
        FakeCompositor::close(open());
        const auto window = open();
        FakeCompositor::tell(window, "player", State::fullscreen);
        if (round % 2 == 0) {
            EXPECT_TRUE(areFullscreen(1));
        }
        FakeCompositor::close(window);
        EXPECT_TRUE(isInFront(""));
    }
}

TEST_F(OfferedToplevelsTest, two_windows_in_front_are_one) {
    const auto offer = fake.offerToplevels();
    const auto first = open();
    FakeCompositor::tell(first, "first", State::fullscreen);
    FakeCompositor::tell(open(), "second", State::fullscreen);
    EXPECT_TRUE(isInFront("first"));
    EXPECT_TRUE(areFullscreen(1));
    FakeCompositor::tell(first, "first", State::behind);
    EXPECT_TRUE(isInFront("second"));
}

TEST_F(OfferedToplevelsTest, a_service_that_ends_is_found_again) {
    auto offer = fake.offerToplevels();
    FakeCompositor::tell(open(), "before", State::fullscreen);
    ASSERT_TRUE(areFullscreen(1));
    fake.finishToplevels();
    EXPECT_TRUE(areFullscreen(0));
    offer.reset();
    EXPECT_TRUE(waitUntil([&] { return !toplevels.isTelling(); }));
    offer = fake.offerToplevels();
    EXPECT_TRUE(waitUntil([&] { return toplevels.isTelling(); }));
    FakeCompositor::tell(open(), "after", State::active);
    EXPECT_TRUE(isInFront("after"));
}

TEST_F(OfferedToplevelsTest, a_compositor_that_ends_the_connection_has_nobody_in_front) {
    const auto offer = fake.offerToplevels();
    const auto window = open();
    FakeCompositor::tell(window, "player", State::fullscreen);
    ASSERT_TRUE(areFullscreen(1));
    FakeCompositor::tell(window, "player", State::behind); // on its way when the connection ends
    fake.openWindow();
    fake.accuse();
    EXPECT_TRUE(areFullscreen(0));
    EXPECT_FALSE(toplevels.isTelling());
    EXPECT_FALSE(toplevels.front());
}

TEST_F(OfferedToplevelsTest, what_is_on_its_way_when_we_go_goes_too) {
    const auto offer = fake.offerToplevels();
    for (int round = 0; round < 20; ++round) {
        const auto ours = WaylandConnection::open(fake.socket());
        ForeignToplevels asking(ours);
        ASSERT_TRUE(waitUntil([&] {
            asking.front();
            return fake.isAskedForToplevels();
        }));
        const auto window = fake.openWindow();
        FakeCompositor::tell(window, "player", State::active);
        FakeCompositor::close(window);
    }
}

} // namespace

} // namespace pavonel::test
