#include "Platform/Linux/X11/X11HotKeys.h"

#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11Keyboard.h"
#include "Platform/Linux/X11/macKeyPositions.h"
#include "X11/server.h"
#include "support/XClient.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr std::uint32_t macB = 11;
constexpr std::uint32_t macS = 1;
constexpr std::uint32_t macP = 35;
constexpr std::uint32_t macEscape = 53;
constexpr std::uint32_t controlOptionCommand = 0x1900;

// The numbers that the X server gives these keys; xdotool types them by number, as fingers do.
constexpr int keyB = 56;
constexpr int keyS = 39;
constexpr int keyP = 33;
constexpr int keyQ = 24;

/// Keys that are held repeat, which they do not elsewhere in the tests.
struct RepeatingKeys {
    RepeatingKeys() { set(QStringLiteral("on")); }
    ~RepeatingKeys() { set(QStringLiteral("off")); }
    RepeatingKeys(const RepeatingKeys &) = delete;
    RepeatingKeys &operator=(const RepeatingKeys &) = delete;

    static void set(const QString &to) { server().run(QStringLiteral("xset"), {QStringLiteral("r"), to}); }
};

class X11HotKeysTest : public testing::Test {
protected:
    X11HotKeysTest()
        : connection(X11Connection::open(server().display())), keys(X11HotKeys::make(connection)),
          other(server().display()) {
        keys->setPressHandler([this](std::uint32_t identifier) { pressed.push_back(identifier); });
        editor = other.open({100, 100, 400, 300}, Qt::red);
        other.focus(editor);
    }
    ~X11HotKeysTest() override {
        for (const char *key : {"Caps_Lock", "Num_Lock", "Scroll_Lock"})
            setLock(key, false);
        setLayout({QStringLiteral("us"), QStringLiteral("-option"), QString()});
    }

    static void type(int key, const QStringList &modifiers = {}) {
        QStringList arguments;
        for (const QString &modifier : modifiers)
            arguments << QStringLiteral("keydown") << modifier;
        arguments << QStringLiteral("key") << QString::number(key);
        for (const QString &modifier : modifiers)
            arguments << QStringLiteral("keyup") << modifier;
        server().xdotool(arguments);
    }
    static void typeShortcut(int key) {
        type(key, {QStringLiteral("Control_L"), QStringLiteral("Alt_L"), QStringLiteral("Super_L")});
    }
    bool firesOnce(int key, std::uint32_t identifier) {
        pressed.clear();
        typeShortcut(key);
        return waitUntil([&] { return !pressed.empty(); }) && pressed == std::vector{identifier};
    }
    static void setLayout(const QStringList &arguments) {
        server().run(QStringLiteral("setxkbmap"), arguments);
    }
    bool isLocked(std::uint16_t modifier) {
        const XReply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(other.xcb(), xcb_query_pointer(other.xcb(), other.root()), nullptr));
        return pointer->mask & modifier;
    }
    void setLock(const char *key, bool on) {
        const std::uint16_t modifier = key[0] == 'C'   ? XCB_MOD_MASK_LOCK
                                       : key[0] == 'N' ? XCB_MOD_MASK_2
                                                       : XCB_MOD_MASK_3;
        if (isLocked(modifier) != on)
            server().xdotool({QStringLiteral("key"), QString::fromLatin1(key)});
    }

    /// Until all presses so far have been reported.
    void settle() {
        connection->number(connection->root(), "WM_NAME"); // a reply comes after all events
        int turns = 0;
        waitUntil([&] { return ++turns > 3; });
    }

    std::shared_ptr<X11Connection> connection;
    std::unique_ptr<HotKeyService> keys;
    XClient other;
    xcb_window_t editor;
    std::vector<std::uint32_t> pressed;
};

} // namespace

TEST_F(X11HotKeysTest, the_shortcuts_work_while_another_program_has_the_keyboard) {
    const auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    const auto skip = keys->registerKey(macS, controlOptionCommand, 2);
    const auto pause = keys->registerKey(macP, controlOptionCommand, 3);
    ASSERT_TRUE(micro && skip && pause);

    EXPECT_TRUE(firesOnce(keyB, 1));
    EXPECT_TRUE(firesOnce(keyS, 2));
    EXPECT_TRUE(firesOnce(keyP, 3));
    EXPECT_EQ(other.focused(), editor);
}

TEST_F(X11HotKeysTest, the_focused_program_sees_nothing_of_a_shortcut_but_all_else) {
    const auto micro = keys->registerKey(macB, 0, 1);
    type(keyB);
    ASSERT_TRUE(waitUntil([&] { return pressed.size() == 1; }));
    EXPECT_EQ(other.keyPresses(), 0);

    type(keyQ);
    EXPECT_TRUE(waitUntil([&] { return other.keyPresses() == 1; }));
    EXPECT_EQ(pressed.size(), 1U);
}

TEST_F(X11HotKeysTest, the_shortcuts_work_under_every_state_of_the_locks) {
    const auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    ASSERT_TRUE(micro);
    for (const bool caps : {false, true}) {
        for (const bool num : {false, true}) {
            setLock("Caps_Lock", caps);
            setLock("Num_Lock", num);
            ASSERT_EQ(isLocked(XCB_MOD_MASK_LOCK), caps);
            ASSERT_EQ(isLocked(XCB_MOD_MASK_2), num);
            EXPECT_TRUE(firesOnce(keyB, 1)) << "Caps Lock " << caps << ", Num Lock " << num;
        }
    }
}

TEST_F(X11HotKeysTest, another_modifier_more_or_less_is_another_shortcut) {
    const auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    type(keyB, {QStringLiteral("Control_L"), QStringLiteral("Alt_L")});
    type(keyB, {QStringLiteral("Control_L"), QStringLiteral("Alt_L"), QStringLiteral("Super_L"),
                QStringLiteral("Shift_L")});
    settle();
    EXPECT_TRUE(pressed.empty());
    EXPECT_TRUE(firesOnce(keyB, 1));
}

TEST_F(X11HotKeysTest, escape_is_taken_only_while_it_is_registered) {
    server().xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
    EXPECT_TRUE(waitUntil([&] { return other.keyPresses() == 1; }));

    auto escape = keys->registerKey(macEscape, 0, 10);
    ASSERT_TRUE(escape);
    server().xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
    EXPECT_TRUE(waitUntil([&] { return pressed == std::vector<std::uint32_t>{10}; }));
    EXPECT_EQ(other.keyPresses(), 1);

    escape.reset();
    server().xdotool({QStringLiteral("key"), QStringLiteral("Escape")});
    EXPECT_TRUE(waitUntil([&] { return other.keyPresses() == 2; }));
    EXPECT_EQ(pressed.size(), 1U);
}

TEST_F(X11HotKeysTest, a_combination_that_another_program_owns_cannot_be_had) {
    const auto first = keys->registerKey(macB, controlOptionCommand, 1);
    ASSERT_TRUE(first);
    const auto second = X11HotKeys::make(X11Connection::open(server().display()));
    EXPECT_FALSE(second->registerKey(macB, controlOptionCommand, 1));
    EXPECT_TRUE(firesOnce(keyB, 1)) << "the first one keeps it";
    const auto free = second->registerKey(macS, controlOptionCommand, 2);
    EXPECT_TRUE(free) << "the others can be had";
}

TEST_F(X11HotKeysTest, one_taken_state_of_the_locks_gives_up_the_whole_combination) {
    ASSERT_TRUE(other.grabKey(keyB, XCB_MOD_MASK_2));
    EXPECT_FALSE(keys->registerKey(macB, 0, 1));
    EXPECT_TRUE(waitUntil([&] { return other.grabKey(keyB, 0); })) << "something of it stays behind";
}

TEST_F(X11HotKeysTest, a_combination_of_our_own_is_not_given_twice) {
    auto first = keys->registerKey(macB, controlOptionCommand, 1);
    EXPECT_FALSE(keys->registerKey(macB, controlOptionCommand, 2));
    EXPECT_TRUE(firesOnce(keyB, 1));
    first.reset();
    const auto again = keys->registerKey(macB, controlOptionCommand, 2);
    ASSERT_TRUE(again);
    EXPECT_TRUE(firesOnce(keyB, 2));
}

TEST_F(X11HotKeysTest, a_key_held_down_is_one_press) {
    const RepeatingKeys repeating;
    const auto micro = keys->registerKey(macB, 0, 1);
    ASSERT_TRUE(micro);
    server().xdotool({QStringLiteral("keydown"), QString::number(keyQ)});
    ASSERT_TRUE(waitUntil([&] { return other.keyPresses() > 3; })) << "this server repeats keys";
    server().xdotool({QStringLiteral("keyup"), QString::number(keyQ)});

    server().xdotool({QStringLiteral("keydown"), QString::number(keyB)});
    waitUntil([] { return false; }, 1500);
    server().xdotool({QStringLiteral("keyup"), QString::number(keyB)});
    settle();
    EXPECT_EQ(pressed.size(), 1U);
    type(keyB);
    EXPECT_TRUE(waitUntil([&] { return pressed.size() == 2; })) << "the next press counts again";
}

TEST_F(X11HotKeysTest, a_registration_may_end_in_its_own_press_and_outlive_the_service) {
    auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    const auto skip = keys->registerKey(macS, controlOptionCommand, 2);
    bool called = false;
    keys->setPressHandler([&](std::uint32_t) {
        micro.reset();
        called = true;
    });
    typeShortcut(keyB);
    EXPECT_TRUE(waitUntil([&] { return called; }));
    keys.reset();
}

TEST_F(X11HotKeysTest, shortcuts_stay_at_their_places_on_every_layout) {
    const auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    const auto skip = keys->registerKey(macS, controlOptionCommand, 2);
    const auto pause = keys->registerKey(macP, controlOptionCommand, 3);
    for (const char *layout : {"de", "fr", "ru", "us", "us(dvorak)"}) {
        setLayout({QString::fromLatin1(layout)});
        EXPECT_TRUE(firesOnce(keyB, 1)) << layout;
        EXPECT_TRUE(firesOnce(keyS, 2)) << layout;
        EXPECT_TRUE(firesOnce(keyP, 3)) << layout;
        const auto registeredNow = keys->registerKey(macEscape, 0, 10);
        EXPECT_TRUE(registeredNow) << layout;
    }
}

TEST_F(X11HotKeysTest, shortcuts_work_in_the_second_of_two_layouts) {
    setLayout({QStringLiteral("us,de"), QStringLiteral("-option"), QStringLiteral("grp:caps_toggle")});
    const auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    EXPECT_TRUE(firesOnce(keyB, 1));
    server().xdotool({QStringLiteral("key"), QStringLiteral("66")}); // the key of Caps Lock
    EXPECT_TRUE(firesOnce(keyB, 1));
    server().xdotool({QStringLiteral("key"), QStringLiteral("66")});
}

TEST_F(X11HotKeysTest, shortcuts_follow_modifiers_that_move) {
    const auto micro = keys->registerKey(macB, 0x0100, 1); // command
    ASSERT_TRUE(micro);
    setLayout({QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("altwin:swap_alt_win")});
    EXPECT_TRUE(waitUntil([&] {
        type(keyB, {QStringLiteral("64")}); // the key left of the space bar is Super now
        return !pressed.empty();
    }));
}

TEST_F(X11HotKeysTest, a_key_or_modifier_that_this_keyboard_lacks_cannot_be_had) {
    EXPECT_FALSE(keys->registerKey(9999, 0, 1));
    EXPECT_FALSE(keys->registerKey(0xffffffff, 0xffffffff, 1));
    EXPECT_FALSE(keys->registerKey(macB, 0x80000000, 1));
    EXPECT_FALSE(keys->registerKey(63, 0, 1)) << "fn";
}

TEST_F(X11HotKeysTest, without_a_handler_a_press_does_nothing) {
    const auto micro = keys->registerKey(macB, controlOptionCommand, 1);
    keys->setPressHandler({});
    typeShortcut(keyB);
    settle();
    keys->setPressHandler([this](std::uint32_t identifier) { pressed.push_back(identifier); });
    EXPECT_TRUE(firesOnce(keyB, 1));
}

TEST_F(X11HotKeysTest, a_server_that_died_gives_no_shortcut) {
    auto dying = std::make_unique<XServer>();
    const auto doomed = X11Connection::open(dying->display());
    const auto service = X11HotKeys::make(doomed);
    const auto micro = service->registerKey(macB, controlOptionCommand, 1);
    ASSERT_TRUE(micro);
    dying.reset();
    EXPECT_TRUE(waitUntil([&] { return !doomed->isAlive(); }));
    EXPECT_FALSE(service->registerKey(macS, controlOptionCommand, 2));
}

TEST(X11Keyboard, every_position_of_a_mac_keyboard_is_known_to_the_server) {
    const auto connection = X11Connection::open(server().display());
    ASSERT_TRUE(X11Keyboard::isReadable(*connection));
    const auto keyboard = X11Keyboard::read(*connection);
    std::map<X11Keyboard::Combination, std::uint32_t> codes;
    for (std::uint32_t code = 0; code < 128; ++code) {
        if (!xkbNameOfMacKey(code))
            continue;
        const auto combination = keyboard.resolve(code, 0);
        ASSERT_TRUE(combination) << "code " << code;
        EXPECT_TRUE(codes.emplace(*combination, code).second) << "code " << code << " shares its key";
    }
    EXPECT_GT(codes.size(), 100U);
}

} // namespace pavonel::test
