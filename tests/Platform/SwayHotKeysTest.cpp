#include "Platform/Linux/Sway/SwayHotKeys.h"

#include "Platform/FakeSway.h"
#include "support/keys.h"

namespace pavonel::test {

namespace {

class SwayHotKeysTest : public testing::Test {
protected:
    SwayHotKeysTest() {
        service->setPressHandler([this](std::uint32_t identifier) { pressed.push_back(identifier); });
    }

    void answer(std::uint32_t type, const QByteArray &text) { fake.client()->write(message(type, text)); }
    void answerFirst(const QByteArray &configuration) {
        answer(FakeSway::subscribe, R"({"success":true})");
        answer(FakeSway::getConfig, R"({"config":")" + configuration + R"("})");
    }
    static QByteArray bind(const char *rest) {
        return QByteArray("bindcode --no-warn --no-repeat Control+Mod1+Mod4+") + rest;
    }
    static bool becomesHeld(const HotKeyRegistration &key, bool held = true) {
        return waitUntil([&] { return key.isHeld() == held; });
    }

    FakeSway fake;
    std::unique_ptr<HotKeyService> service = makeHotKeyService(SwayHotKeys::make());
    std::vector<std::uint32_t> pressed;
};

TEST_F(SwayHotKeysTest, a_key_is_held_once_sway_has_bound_it_until_it_is_given_back) {
    auto key = service->registerKey(keyB, controlOptionCommand, 1);
    ASSERT_NE(key, nullptr);
    EXPECT_FALSE(key->isHeld());
    answerFirst("");
    EXPECT_TRUE(fake.isAsked(bind("56 nop pavonel 1")));
    answer(FakeSway::runCommand, R"([{"success":true}])");
    EXPECT_TRUE(becomesHeld(*key));
    key.reset();
    EXPECT_TRUE(fake.isAsked("unbindcode Control+Mod1+Mod4+56"));
}

TEST_F(SwayHotKeysTest, what_the_user_has_bound_stays_his) {
    auto taken = service->registerKey(keyB, controlOptionCommand, 1);
    const auto free = service->registerKey(keyS, controlOptionCommand, 2);
    answerFirst(R"(set $mod Mod4\nbindsym $mod+Ctrl+Alt+b exec x\n)");
    EXPECT_TRUE(fake.isAsked(bind("39 nop pavonel 2")));
    answer(FakeSway::runCommand, R"([{"success":true}])");
    EXPECT_TRUE(becomesHeld(*free));
    EXPECT_FALSE(taken->isHeld());
    taken.reset();
    EXPECT_TRUE(fake.isAsked("unbind", 0));
    EXPECT_FALSE(fake.heard().contains(bind("56")));
}

TEST_F(SwayHotKeysTest, a_key_that_sway_refuses_is_not_held) {
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    answerFirst("");
    EXPECT_TRUE(fake.isAsked(bind("56 nop pavonel 1")));
    answer(FakeSway::runCommand, R"([{"success":false,"error":"no"}])");
    const auto next = service->registerKey(keyS, controlOptionCommand, 2);
    EXPECT_TRUE(fake.isAsked(bind("39 nop pavonel 2")));
    answer(FakeSway::runCommand, R"([{"success":true}])");
    EXPECT_TRUE(becomesHeld(*next));
    EXPECT_FALSE(key->isHeld());
}

TEST_F(SwayHotKeysTest, keys_are_bound_again_after_a_reload) {
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    answerFirst("");
    EXPECT_TRUE(fake.isAsked(bind("56 nop pavonel 1")));
    answer(FakeSway::runCommand, R"([{"success":true}])");
    EXPECT_TRUE(becomesHeld(*key));
    answer(0x80000000, R"({"change":"reload"})");
    EXPECT_TRUE(becomesHeld(*key, false));
    EXPECT_TRUE(fake.isAsked(message(FakeSway::getConfig, {}), 2));
    answer(FakeSway::getConfig, R"({"config":""})");
    EXPECT_TRUE(fake.isAsked(bind("56 nop pavonel 1"), 2));
    answer(FakeSway::runCommand, R"([{"success":true}])");
    EXPECT_TRUE(becomesHeld(*key));
}

TEST_F(SwayHotKeysTest, only_our_own_bindings_are_presses) {
    const auto key = service->registerKey(keyB, controlOptionCommand, 7);
    for (const char *command :
         {"exec x", "nop", "nop pavonel", "nop pavonel x", "nop pavonel 8", "nop pavonel 7"})
        answer(0x80000005, QByteArray(R"({"change":"run","binding":{"command":")") + command + "\"}}");
    answer(0x80000005, "no json");
    answer(0x80000005, R"({"binding":7})");
    EXPECT_TRUE(waitUntil([&] { return !pressed.empty(); }));
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));
}

TEST_F(SwayHotKeysTest, refuses_twice_the_same_and_keys_without_a_modifier) {
    const auto key = service->registerKey(keyB, controlOptionCommand, 1);
    EXPECT_EQ(service->registerKey(keyB, controlOptionCommand, 2), nullptr);
    EXPECT_EQ(service->registerKey(escape, 0, 10), nullptr);
    EXPECT_EQ(service->registerKey(keyB, 0, 3), nullptr);
}

TEST_F(SwayHotKeysTest, a_sway_that_is_gone_is_told_and_holds_nobody_up) {
    auto key = service->registerKey(keyB, controlOptionCommand, 1);
    EXPECT_EQ(service->limitation(), QString());
    fake.client()->close();
    EXPECT_TRUE(waitUntil([&] { return !service->limitation().isEmpty(); }));
    key.reset();
}

TEST_F(SwayHotKeysTest, a_registration_may_outlive_its_service) {
    auto key = service->registerKey(keyB, controlOptionCommand, 1);
    answerFirst("");
    EXPECT_TRUE(fake.isAsked(bind("56 nop pavonel 1")));
    service.reset();
    answer(FakeSway::runCommand, R"([{"success":true}])");
    EXPECT_TRUE(becomesHeld(*key));
    key.reset();
    EXPECT_TRUE(fake.isAsked("unbindcode"));
}

} // namespace

} // namespace pavonel::test
