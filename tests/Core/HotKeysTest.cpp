#include "Core/HotKeys.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

struct HotKeysBench {
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
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("break"), 11));
    bench.manager.registerBinding(bench.binding(2, QStringLiteral("skip"), 1));
    bench.press(2);
    bench.press(1);
    EXPECT_EQ(bench.actions, (QStringList{QStringLiteral("skip"), QStringLiteral("break")}));
    EXPECT_EQ(bench.platform.keys.registered,
              (std::vector<FakeHotKeys::Key>{{11, 0x1900, 1}, {1, 0x1900, 2}}));
}

TEST(HotKeyManager, an_action_runs_on_the_main_thread_and_not_within_the_press) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("break")));
    bench.platform.keys.handler(1);
    EXPECT_EQ(bench.actions, QStringList());
    bench.platform.loop.advance(0);
    EXPECT_EQ(bench.actions.size(), 1);
}

TEST(HotKeyManager, no_handler_is_installed_until_the_first_registration_and_then_once) {
    HotKeysBench bench;
    EXPECT_EQ(bench.platform.keys.handlersSet, 0);
    bench.manager.unregisterEscape();
    EXPECT_EQ(bench.platform.keys.handlersSet, 0);
    bench.manager.registerBinding(bench.escape());
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("break")));
    EXPECT_EQ(bench.platform.keys.handlersSet, 1);
}

TEST(HotKeyManager, registering_an_id_again_replaces_its_action_and_asks_the_platform_again) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("old")));
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("new")));
    EXPECT_EQ(bench.platform.keys.attempts.size(), 2U);
    EXPECT_EQ(bench.platform.keys.registered.size(), 1U);
    bench.press(1);
    EXPECT_EQ(bench.actions, QStringList{QStringLiteral("new")});
}

TEST(HotKeyManager, a_second_registration_that_fails_leaves_the_first_in_place) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("old")));
    bench.platform.keys.refuses = true;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("new")));
    EXPECT_EQ(bench.platform.keys.registered.size(), 1U);
    bench.press(1);
    EXPECT_EQ(bench.actions, QStringList{QStringLiteral("new")});
}

TEST(HotKeyManager, tells_which_combinations_it_could_not_have) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("free")));
    bench.platform.keys.refuses = true;
    bench.manager.registerBinding(bench.binding(2, QStringLiteral("taken")));
    EXPECT_TRUE(bench.manager.holds(1));
    EXPECT_FALSE(bench.manager.holds(2));
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
    HotKeysBench bench;
    bench.platform.keys.refuses = true;
    bench.manager.registerBinding(bench.escape());
    EXPECT_TRUE(bench.platform.keys.registered.empty());
    EXPECT_FALSE(bench.manager.holds(HotKeyManager::escapeID));
    bench.manager.unregisterEscape(); // which leaves the binding
    bench.press(HotKeyManager::escapeID);
    EXPECT_EQ(bench.actions, QStringList{QStringLiteral("esc")});
}

TEST(HotKeyManager, a_press_without_a_binding_does_nothing) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("break")));
    bench.press(77);
    EXPECT_EQ(bench.actions, QStringList());
}

TEST(HotKeyManager, a_binding_without_an_action_does_nothing) {
    HotKeysBench bench;
    bench.manager.registerBinding({1, 11, 0x1900, QStringLiteral("none"), nullptr});
    bench.press(1);
}

TEST(HotKeyManager, escape_is_held_from_its_registration_to_its_removal) {
    HotKeysBench bench;
    EXPECT_FALSE(bench.manager.holds(HotKeyManager::escapeID));
    bench.manager.registerBinding(bench.escape());
    EXPECT_TRUE(bench.manager.holds(HotKeyManager::escapeID));
    EXPECT_EQ(bench.platform.keys.registered, (std::vector<FakeHotKeys::Key>{{53, 0, 10}}));
    bench.manager.unregisterEscape();
    EXPECT_FALSE(bench.manager.holds(HotKeyManager::escapeID));
    EXPECT_TRUE(bench.platform.keys.registered.empty());
    bench.press(HotKeyManager::escapeID); // a press that was under way
    EXPECT_EQ(bench.actions, QStringList());
}

TEST(HotKeyManager, a_press_of_escape_that_is_dealt_with_after_its_removal_does_nothing) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.escape());
    bench.platform.keys.handler(HotKeyManager::escapeID);
    bench.platform.keys.handler(HotKeyManager::escapeID);
    bench.manager.unregisterEscape();
    bench.platform.loop.advance(0);
    EXPECT_EQ(bench.actions, QStringList());
}

TEST(HotKeyManager, removing_escape_without_a_registration_leaves_everything) {
    HotKeysBench bench;
    bench.manager.registerBinding(bench.binding(1, QStringLiteral("break")));
    bench.manager.unregisterEscape();
    EXPECT_EQ(bench.platform.keys.registered.size(), 1U);
    bench.press(1);
    EXPECT_EQ(bench.actions.size(), 1);
}

TEST(HotKeyManager, an_action_may_remove_its_own_binding) {
    HotKeysBench bench;
    Binding escape = bench.escape();
    escape.action = [&] {
        bench.manager.unregisterEscape();
        bench.actions.append(QStringLiteral("ended"));
    };
    bench.manager.registerBinding(escape);
    bench.press(HotKeyManager::escapeID);
    EXPECT_EQ(bench.actions, QStringList{QStringLiteral("ended")});
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
