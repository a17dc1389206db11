#include "UI/Palette.h"

#include <vector>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

AppearanceWishes wishes(bool dark, std::optional<std::uint32_t> accent = {}) {
    AppearanceWishes wanted;
    wanted.dark = dark;
    wanted.accent = accent;
    return wanted;
}

/// The accents that desktops offer, and the extremes that a user can pick.
const std::vector<std::uint32_t> accents{0x3584E4, 0x2190A4, 0x3A944A, 0xC88800, 0xED5B00, 0xE62D42, 0xD56199,
                                         0x9141AC, 0x6F8396, 0xF5C211, 0xFFFF00, 0x000000, 0xFFFFFF, 0x808080,
                                         0x00FF00, 0x0000FF, 0xFF0000, 0x3DAEE9, 0x1D1D1F, 0xF4F4F6};

template <class Check> void forEveryPalette(Check check) {
    for (const bool dark : {false, true}) {
        check(Palette(wishes(dark)), dark ? "dark" : "light");
        for (const std::uint32_t accent : accents) {
            const QString name = QStringLiteral("%1, accent %2")
                                     .arg(dark ? QStringLiteral("dark") : QStringLiteral("light"))
                                     .arg(accent, 6, 16, QLatin1Char('0'));
            check(Palette(wishes(dark, accent)), name.toStdString());
        }
    }
}

std::vector<QColor> surfaces(const Palette &palette) {
    return {palette.window, palette.sidebar, palette.card, blended(palette.panel, Qt::black),
            blended(palette.panel, Qt::white)};
}

} // namespace

TEST(Palette, contrast_is_21_between_black_and_white_and_1_between_equals) {
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21, 0.001);
    EXPECT_NEAR(contrast(QColor(10, 90, 200), QColor(10, 90, 200)), 1, 0.001);
}

TEST(Palette, text_and_secondary_text_read_well_on_every_surface) {
    forEveryPalette([](const Palette &palette, const std::string &name) {
        for (const QColor &surface : surfaces(palette)) {
            EXPECT_GE(contrast(palette.text, surface), 4.5) << name;
            EXPECT_GE(contrast(palette.secondaryText, surface), 4.5) << name;
        }
    });
}

TEST(Palette, secondary_text_stands_back_behind_the_text) {
    forEveryPalette([](const Palette &palette, const std::string &name) {
        EXPECT_LT(contrast(palette.secondaryText, palette.window), contrast(palette.text, palette.window) / 2)
            << name;
    });
}

TEST(Palette, the_accent_as_an_ink_reads_well_on_every_surface_and_on_a_selected_row) {
    forEveryPalette([](const Palette &palette, const std::string &name) {
        for (const QColor &surface : surfaces(palette))
            EXPECT_GE(contrast(palette.accentText, surface), 4.5) << name;
        EXPECT_GE(contrast(palette.accentText, blended(palette.selection, palette.sidebar)), 4.5) << name;
    });
}

TEST(Palette, buttons_read_well_idle_hovered_and_pressed) {
    forEveryPalette([](const Palette &palette, const std::string &name) {
        const auto check = [&name](const ButtonColours &button, const QColor &ground) {
            for (const QColor &fill : {button.fill, button.hovered, button.pressed})
                EXPECT_GE(contrast(button.ink, blended(fill, ground)), 4.5) << name;
        };
        check(palette.prominentButton, palette.card);
        check(palette.plainButton, palette.card);
        for (const QColor &below : {QColor(Qt::black), QColor(Qt::white)}) {
            check(palette.panelButton, blended(palette.panel, below));
            check(palette.closeButton, blended(palette.panel, below));
        }
    });
}

TEST(Palette, a_button_looks_different_under_the_pointer_and_pressed) {
    forEveryPalette([](const Palette &palette, const std::string &name) {
        for (const ButtonColours &button :
             {palette.prominentButton, palette.plainButton, palette.panelButton, palette.closeButton}) {
            EXPECT_NE(button.fill, button.hovered) << name;
            EXPECT_NE(button.hovered, button.pressed) << name;
        }
    });
}

TEST(Palette, without_a_chosen_accent_it_is_peacock_teal) {
    EXPECT_EQ(Palette(wishes(false)).accent, QColor(0x0E, 0x7C, 0x86));
    const QColor dark(0x26, 0xA5, 0xB0);
    EXPECT_NEAR(Palette(wishes(true)).accentText.hueF(), dark.hueF(), 0.01);
    EXPECT_NEAR(Palette(wishes(true)).accent.hueF(), dark.hueF(), 0.01);
    EXPECT_EQ(Palette(wishes(true)).selection.rgb(), dark.rgb());
}

TEST(Palette, an_accent_that_the_user_chose_is_taken_as_it_is_where_white_reads_on_it) {
    EXPECT_EQ(Palette(wishes(false, 0x9141AC)).accent, QColor(0x91, 0x41, 0xAC));
    EXPECT_EQ(Palette(wishes(true, 0x9141AC)).accent, QColor(0x91, 0x41, 0xAC));
    EXPECT_EQ(Palette(wishes(false, 0x9141AC)).onAccent, QColor(Qt::white));
}

TEST(Palette, a_very_light_accent_gets_a_dark_ink_instead_of_turning_brown) {
    const Palette palette(wishes(false, 0xF5C211));
    EXPECT_EQ(palette.accent, QColor(0xF5, 0xC2, 0x11));
    EXPECT_LT(palette.onAccent.lightnessF(), 0.2f);
}

} // namespace pavonel::test
