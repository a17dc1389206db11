#include "Platform/Linux/X11/X11IdleTime.h"

#include "Platform/Linux/X11/X11Connection.h"
#include "X11/server.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(X11IdleTime, a_spell_that_began_before_us_counts_from_its_beginning) {
    const auto earlier = x11::makeIdleTime(X11Connection::open(server().display()));
    ASSERT_TRUE(waitUntil([&] { return earlier->idleSeconds() >= 5; }));

    const auto idle = x11::makeIdleTime(X11Connection::open(server().display()));
    EXPECT_GE(idle->idleSeconds(), 5);
}

/// Each way to learn of it.
class X11IdleTimeTest : public testing::TestWithParam<decltype(&x11::makeIdleTime)> {};

INSTANTIATE_TEST_SUITE_P(X11, X11IdleTimeTest, testing::Values(x11::makeIdleTime, x11::makeQueriedIdleTime),
                         [](const auto &way) { return way.index == 0 ? "told" : "asked"; });

TEST_P(X11IdleTimeTest, counts_from_the_last_input_whoever_got_it) {
    const auto idle = GetParam()(X11Connection::open(server().display()));
    ASSERT_TRUE(idle);
    EXPECT_TRUE(idle->limitation().isEmpty());

    for (const QStringList &input :
         {QStringList{QStringLiteral("key"), QStringLiteral("a")},
          {QStringLiteral("mousemove_relative"), QStringLiteral("3"), QStringLiteral("3")},
          {QStringLiteral("click"), QStringLiteral("1")}}) {
        ASSERT_TRUE(waitUntil([&] { return idle->idleSeconds() > 0.5; }));
        EXPECT_TRUE(waitUntil([&] {
            server().xdotool(input);
            return idle->idleSeconds() < 0.4;
        })) << input.first().toStdString();
    }
}

TEST_P(X11IdleTimeTest, a_server_that_died_reads_as_an_active_user) {
    auto dying = std::make_unique<XServer>();
    const auto idle = GetParam()(X11Connection::open(dying->display()));
    ASSERT_TRUE(idle);
    ASSERT_TRUE(waitUntil([&] { return idle->idleSeconds() > 0.05; }));

    dying.reset();
    EXPECT_TRUE(waitUntil([&] { return idle->idleSeconds() == 0; }));
}

} // namespace pavonel::test
