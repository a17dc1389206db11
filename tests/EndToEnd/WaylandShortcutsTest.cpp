#include "EndToEnd/WaylandPlaces.h"
#include "support/waitUntil.h"

#include <csignal>

namespace pavonel::test {

namespace {

constexpr std::uint32_t controlAltSuper = VirtualInput::control | VirtualInput::alt | VirtualInput::super;
const QByteArray keyB = "key " + QByteArray::number(Qt::Key_B);

template <class Place> struct ShortcutsOnWayland : testing::Test {
    ShortcutsOnWayland() { EXPECT_TRUE(other.becomesActive()); }

    void start(QJsonObject settings = {}) {
        settings.insert(QStringLiteral("microInterval"), 3600);
        settings.insert(QStringLiteral("microDuration"), 600);
        settings.insert(QStringLiteral("naturalBreakEnabled"), false);
        desktop.store(settings);
        desktop.startProgram();
    }
    void press(VirtualInput::Key key) { desktop.compositor().input().press(key, controlAltSuper); }
    QString phase() { return desktop.status()[QStringLiteral("phase")].toString(); }
    bool becomes(const char *wanted) {
        return waitUntil([&] { return phase() == QLatin1StringView(wanted); });
    }
    /// The desktop gives the keys a moment after the start.
    bool breaksOnPress() {
        return waitUntil([&] {
            press(VirtualInput::b);
            return phase() == u"breaking";
        });
    }

    Place place;
    WaylandDesktop &desktop = place.desktop;
    OtherWindow other{desktop.compositor().environment()};
};

using PlacesWithShortcuts = testing::Types<OnSway, OnKWin>;
TYPED_TEST_SUITE(ShortcutsOnWayland, PlacesWithShortcuts, NameOfPlace);

TYPED_TEST(ShortcutsOnWayland, take_skip_and_pause_whichever_program_has_the_keyboard) {
    this->start();
    ASSERT_TRUE(this->becomes("counting"));
    ASSERT_TRUE(this->breaksOnPress());
    this->press(VirtualInput::s);
    EXPECT_TRUE(this->becomes("counting"));
    ASSERT_TRUE(this->other.becomesActive());
    const auto leaked = this->other.times(keyB);
    this->press(VirtualInput::p);
    EXPECT_TRUE(this->becomes("paused"));
    this->press(VirtualInput::p);
    EXPECT_TRUE(this->becomes("counting"));
    ASSERT_TRUE(this->breaksOnPress());
    this->press(VirtualInput::s);
    EXPECT_TRUE(this->becomes("counting"));
    EXPECT_EQ(this->other.times(keyB), leaked) << "nobody else sees them";
}

TYPED_TEST(ShortcutsOnWayland, belong_to_others_when_pavonel_has_ended) {
    this->start();
    ASSERT_TRUE(this->becomes("counting"));
    ASSERT_TRUE(this->breaksOnPress());
    EXPECT_EQ(this->desktop.endProgram(SIGTERM), 0);
    ASSERT_TRUE(this->other.becomesActive());
    const auto before = this->other.times(keyB);
    this->press(VirtualInput::b);
    EXPECT_TRUE(waitUntil([&] { return this->other.times(keyB) == before + 1; }));
}

TYPED_TEST(ShortcutsOnWayland, are_not_taken_where_they_are_switched_off) {
    this->start({{QStringLiteral("hotKeysEnabled"), false}});
    ASSERT_TRUE(this->becomes("counting"));
    this->press(VirtualInput::b);
    EXPECT_TRUE(waitUntil([&] { return this->other.times(keyB) == 1; }));
    EXPECT_EQ(this->phase(), QStringLiteral("counting"));
}

struct ShortcutsOnSway : ShortcutsOnWayland<OnSway> {};

TEST_F(ShortcutsOnSway, outlive_a_reload_of_its_configuration) {
    start();
    ASSERT_TRUE(becomes("counting"));
    ASSERT_TRUE(breaksOnPress());
    press(VirtualInput::s);
    ASSERT_TRUE(becomes("counting"));
    static_cast<Sway &>(desktop.compositor()).command(QStringLiteral("reload"));
    EXPECT_TRUE(breaksOnPress());
}

} // namespace

} // namespace pavonel::test
