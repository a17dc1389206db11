#include "Core/HotKeys.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

struct HotKeysFixture {
    FakePlatform platform;
    HotKeyManager manager{platform.keys, platform.loop};
    QStringList actions;

    Binding binding(std::uint32_t id, const QString &name, std::uint32_t keyCode = 11) {
        return {id, keyCode, 0x1900, name, [this, name] { actions.append(name); }};
    }
    Binding escape() {
        return {HotKeyManager::escapeID, 53, 0, QStringLiteral("esc"),
                [this] { actions.append(QStringLiteral("esc")); }};
    }

    void press(std::uint32_t id) {
        platform.keys.handler(id);
        platform.loop.advance(0);
    }
};

} // namespace

TEST(HotKeyManager, a_press_runs_the_action_of_its_binding) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("break"), 11));
    fixture.manager.registerBinding(fixture.binding(2, QStringLiteral("skip"), 1));
    fixture.press(2);
    fixture.press(1);
    EXPECT_EQ(fixture.actions, (QStringList{QStringLiteral("skip"), QStringLiteral("break")}));
    EXPECT_EQ(fixture.platform.keys.registered,
              (std::vector<FakeHotKeys::Key>{{11, 0x1900, 1}, {1, 0x1900, 2}}));
}

TEST(HotKeyManager, an_action_runs_on_the_main_thread_and_not_within_the_press) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("break")));
    fixture.platform.keys.handler(1);
    EXPECT_EQ(fixture.actions, QStringList());
    fixture.platform.loop.advance(0);
    EXPECT_EQ(fixture.actions.size(), 1);
}

TEST(HotKeyManager, no_handler_is_installed_until_the_first_registration_and_then_once) {
    HotKeysFixture fixture;
    EXPECT_EQ(fixture.platform.keys.handlersSet, 0);
    fixture.manager.unregisterEscape();
    EXPECT_EQ(fixture.platform.keys.handlersSet, 0);
    fixture.manager.registerBinding(fixture.escape());
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("break")));
    EXPECT_EQ(fixture.platform.keys.handlersSet, 1);
}

TEST(HotKeyManager, registering_an_id_again_replaces_its_action_and_asks_the_platform_again) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("old")));
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("new")));
    EXPECT_EQ(fixture.platform.keys.attempts.size(), 2U);
    EXPECT_EQ(fixture.platform.keys.registered.size(), 1U);
    fixture.press(1);
    EXPECT_EQ(fixture.actions, QStringList{QStringLiteral("new")});
}

TEST(HotKeyManager, a_second_registration_that_fails_leaves_the_first_in_place) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("old")));
    fixture.platform.keys.refuses = true;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("new")));
    EXPECT_EQ(fixture.platform.keys.registered.size(), 1U);
    fixture.press(1);
    EXPECT_EQ(fixture.actions, QStringList{QStringLiteral("new")});
}

TEST(HotKeyManager, tells_which_combinations_it_could_not_have) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("free")));
    fixture.platform.keys.refuses = true;
    fixture.manager.registerBinding(fixture.binding(2, QStringLiteral("taken")));
    EXPECT_TRUE(fixture.manager.holds(1));
    EXPECT_FALSE(fixture.manager.holds(2));
}

TEST(HotKeyManager, a_combination_is_held_once_a_slow_desktop_says_so) {
    struct Late final : HotKeyService {
        struct Registration final : HotKeyRegistration {
            explicit Registration(const bool &told) : held(told) {}
            bool isHeld() const override { return held; }
            const bool &held;
        };
        void setPressHandler(PressHandler) override {}
        std::unique_ptr<HotKeyRegistration> registerKey(std::uint32_t, std::uint32_t,
                                                        std::uint32_t) override {
            return std::make_unique<Registration>(held);
        }
        bool held = false;
    } late;
    FakePlatform platform;
    HotKeyManager manager(late, platform.loop);
    manager.registerBinding({1, 11, 0x1900, {}, {}});
    EXPECT_FALSE(manager.holds(1));
    late.held = true;
    EXPECT_TRUE(manager.holds(1));
}

TEST(HotKeyManager, a_combination_that_another_program_owns_stays_silently_without_effect) {
    HotKeysFixture fixture;
    fixture.platform.keys.refuses = true;
    fixture.manager.registerBinding(fixture.escape());
    EXPECT_TRUE(fixture.platform.keys.registered.empty());
    EXPECT_FALSE(fixture.manager.holds(HotKeyManager::escapeID));
    fixture.manager.unregisterEscape(); // which leaves the binding
    fixture.press(HotKeyManager::escapeID);
    EXPECT_EQ(fixture.actions, QStringList{QStringLiteral("esc")});
}

TEST(HotKeyManager, a_press_without_a_binding_does_nothing) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("break")));
    fixture.press(77);
    EXPECT_EQ(fixture.actions, QStringList());
}

TEST(HotKeyManager, a_binding_without_an_action_does_nothing) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding({1, 11, 0x1900, QStringLiteral("none"), nullptr});
    fixture.press(1);
}

TEST(HotKeyManager, escape_is_held_from_its_registration_to_its_removal) {
    HotKeysFixture fixture;
    EXPECT_FALSE(fixture.manager.holds(HotKeyManager::escapeID));
    fixture.manager.registerBinding(fixture.escape());
    EXPECT_TRUE(fixture.manager.holds(HotKeyManager::escapeID));
    EXPECT_EQ(fixture.platform.keys.registered, (std::vector<FakeHotKeys::Key>{{53, 0, 10}}));
    fixture.manager.unregisterEscape();
    EXPECT_FALSE(fixture.manager.holds(HotKeyManager::escapeID));
    EXPECT_TRUE(fixture.platform.keys.registered.empty());
    fixture.press(HotKeyManager::escapeID); // a press that was under way
    EXPECT_EQ(fixture.actions, QStringList());
}

TEST(HotKeyManager, a_press_of_escape_that_is_dealt_with_after_its_removal_does_nothing) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.escape());
    fixture.platform.keys.handler(HotKeyManager::escapeID);
    fixture.platform.keys.handler(HotKeyManager::escapeID);
    fixture.manager.unregisterEscape();
    fixture.platform.loop.advance(0);
    EXPECT_EQ(fixture.actions, QStringList());
}

TEST(HotKeyManager, removing_escape_without_a_registration_leaves_everything) {
    HotKeysFixture fixture;
    fixture.manager.registerBinding(fixture.binding(1, QStringLiteral("break")));
    fixture.manager.unregisterEscape();
    EXPECT_EQ(fixture.platform.keys.registered.size(), 1U);
    fixture.press(1);
    EXPECT_EQ(fixture.actions.size(), 1);
}

TEST(HotKeyManager, an_action_may_remove_its_own_binding) {
    HotKeysFixture fixture;
    Binding escape = fixture.escape();
    escape.action = [&] {
        fixture.manager.unregisterEscape();
        fixture.actions.append(QStringLiteral("ended"));
    };
    fixture.manager.registerBinding(escape);
    fixture.press(HotKeyManager::escapeID);
    EXPECT_EQ(fixture.actions, QStringList{QStringLiteral("ended")});
}

TEST(HotKeyManager, a_press_that_outlives_the_manager_does_nothing) {
    FakePlatform platform;
    bool acted = false;
    {
        HotKeyManager manager(platform.keys, platform.loop);
        manager.registerBinding({1, 11, 0x1900, QStringLiteral("break"), [&] { acted = true; }});
        platform.keys.handler(1);
    }
    platform.loop.advance(0);
    EXPECT_FALSE(acted);
    EXPECT_TRUE(platform.keys.registered.empty());
    EXPECT_FALSE(platform.keys.handler);
}

} // namespace pavonel::test
