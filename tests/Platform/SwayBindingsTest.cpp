#include "Platform/Linux/Sway/SwayBindings.h"

#include "Platform/Linux/Keyboard/UsKey.h"
#include "support/keys.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const UsKey combination = *UsKey::of(keyB, mac::control | mac::option | mac::command);

TEST(UsKey, is_the_sign_and_the_position_of_a_key) {
    EXPECT_EQ(combination.sign, 'B');
    EXPECT_EQ(combination.keycode, 56U);
    EXPECT_EQ(combination.modifiersBy({"<C>", "<A>", "<S>", "<M>"}), "<C><A><M>");
    EXPECT_EQ(UsKey::of(29, mac::shift)->sign, '0');
    EXPECT_EQ(UsKey::of(29, mac::shift)->keycode, 19U);
}

TEST(UsKey, is_none_without_a_modifier_or_without_a_sign) {
    EXPECT_FALSE(UsKey::of(keyB, 0));
    EXPECT_FALSE(UsKey::of(escape, mac::control));
    EXPECT_FALSE(UsKey::of(1000, mac::control));
    EXPECT_FALSE(UsKey::of(keyB, mac::control | 1));
}

class BoundBySway : public testing::TestWithParam<const char *> {};
class NotBoundBySway : public testing::TestWithParam<const char *> {};

INSTANTIATE_TEST_SUITE_P(
    Lines, BoundBySway,
    testing::Values("bindsym Control+Mod1+Mod4+b exec x",
                    "  bindsym   --no-warn --locked mod4+alt+ctrl+B exec x # mine",
                    "bindcode Ctrl+Alt+Logo+56 exec x",
                    "set $mod Mod4\nset $all $mod+Mod1+Control\nbindsym $all+b exec x",
                    "bindsym {\n  Mod4+Mod1+Control+x exec y\n  Mod4+Mod1+Control+b exec x\n}",
                    "bindsym \\\n  Control+Mod1+Mod4+b \\\n exec x",
                    "mode \"m\" {\n bindsym x exec y\n}\nbindsym Control+Mod1+Mod4+b exec x"));
INSTANTIATE_TEST_SUITE_P(Lines, NotBoundBySway,
                         testing::Values("", "# bindsym Control+Mod1+Mod4+b exec x",
                                         "bindsym Control+Mod1+Mod4+Shift+b exec x",
                                         "bindsym Control+Mod1+b exec x",
                                         "bindsym Mod5+Control+Mod1+Mod4+b exec x",
                                         "bindcode Control+Mod1+Mod4+57 exec x",
                                         "mode \"m\" {\n  bindsym Control+Mod1+Mod4+b exec x\n}",
                                         "exec bindsym Control+Mod1+Mod4+b", "bindsym", "bindsym --x",
                                         "}\n}\n{", "set", "bindsym $unknown+b exec x"));

TEST_P(BoundBySway, is_found) {
    EXPECT_TRUE(isBoundBySway(GetParam(), combination));
}

TEST_P(NotBoundBySway, is_not_found) {
    EXPECT_FALSE(isBoundBySway(GetParam(), combination));
}

} // namespace

} // namespace pavonel::test
