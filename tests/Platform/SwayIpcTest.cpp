#include "Platform/FakeSway.h"
#include "Platform/Linux/Sway/SwayWindows.h"

#include <cstring>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr std::uint32_t tree = FakeSway::getTree;
constexpr std::uint32_t windowEvent = 0x80000003;

class SwayIpcTest : public testing::Test {
protected:
    bool isAsked(int times) { return fake.isAsked(message(tree, {}), times); }
    void answer(const QByteArray &text) {
        sway->write(message(FakeSway::subscribe, R"({"success":true})") + message(tree, text));
    }
    bool tells() {
        return waitUntil([&] { return windows->isTelling(); });
    }
    bool isLeft() {
        return waitUntil([&] { return !windows->isTelling(); });
    }

    FakeSway fake;
    std::unique_ptr<SwayWindows> windows = SwayWindows::make();
    QLocalSocket *sway = fake.client();
};

TEST_F(SwayIpcTest, is_not_there_without_a_socket) {
    qputenv("SWAYSOCK", "/nonexistent");
    EXPECT_EQ(SwayWindows::make(), nullptr);
    qputenv("SWAYSOCK", QByteArray(1000, 'x'));
    EXPECT_EQ(SwayWindows::make(), nullptr);
    qunsetenv("SWAYSOCK");
    EXPECT_EQ(SwayWindows::make(), nullptr);
}

TEST_F(SwayIpcTest, tells_nothing_until_sway_has_answered) {
    EXPECT_TRUE(isAsked(1));
    EXPECT_FALSE(windows->isTelling());
    answer(R"({"nodes":[{"id":7,"pid":1234,"focused":true,"app_id":"editor"}]})");
    ASSERT_TRUE(tells());
    ASSERT_TRUE(windows->front());
    EXPECT_EQ(*windows->front(), (FrontWindow{7, 1234, QStringLiteral("editor"), {}}));
}

TEST_F(SwayIpcTest, asks_once_more_for_all_that_changes_while_a_question_is_out) {
    EXPECT_TRUE(isAsked(1));
    const QByteArray change = message(windowEvent, R"({"change":"focus"})");
    sway->write(change + change + change);
    answer(R"({"nodes":[]})");
    EXPECT_TRUE(isAsked(2));
    sway->write(message(windowEvent, R"({"change":"title"})"));
    sway->write(message(tree, R"({"nodes":[{"id":7,"pid":1234,"focused":true}]})"));
    EXPECT_TRUE(waitUntil([&] { return windows->front().has_value(); }));
    EXPECT_TRUE(isAsked(2)) << "a title is none of our business";
}

TEST_F(SwayIpcTest, takes_what_makes_no_sense_for_nothing) {
    answer(R"({"nodes":[{"id":"x","pid":1,"focused":true,"fullscreen_mode":1,"visible":true},
                        {"pid":-5,"focused":true},{"pid":1e300,"focused":true},7,null,[]],"floating_nodes":3})");
    ASSERT_TRUE(tells());
    EXPECT_FALSE(windows->front());
    EXPECT_TRUE(windows->fullscreen().empty());
}

TEST_F(SwayIpcTest, an_answer_that_is_no_json_is_no_window) {
    answer("no json");
    ASSERT_TRUE(tells());
    EXPECT_FALSE(windows->front());
}

TEST_F(SwayIpcTest, leaves_a_sway_that_sends_garbage) {
    answer("{}");
    ASSERT_TRUE(tells());
    sway->write(QByteArray(100, 'g'));
    EXPECT_TRUE(isLeft());
}

TEST_F(SwayIpcTest, leaves_a_sway_that_announces_a_giant_message) {
    answer("{}");
    ASSERT_TRUE(tells());
    QByteArray giant = message(windowEvent, {});
    const std::uint32_t length = 0xffffffff;
    std::memcpy(giant.data() + 6, &length, sizeof length);
    sway->write(giant);
    EXPECT_TRUE(isLeft());
}

TEST_F(SwayIpcTest, leaves_a_sway_that_answers_what_nobody_asked) {
    answer("{}");
    ASSERT_TRUE(tells());
    sway->write(message(tree, "{}"));
    EXPECT_TRUE(isLeft());
}

TEST_F(SwayIpcTest, notices_that_sway_is_gone) {
    answer("{}");
    ASSERT_TRUE(tells());
    sway->close();
    EXPECT_TRUE(isLeft());
}

} // namespace

} // namespace pavonel::test
