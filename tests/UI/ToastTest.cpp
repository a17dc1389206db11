#include "UI/Fonts.h"
#include "UI/Panels/ToastController.h"
#include "support/FakePlatform.h"
#include "support/windows.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr auto title = "Pavonel Toast";
const QString posture = QStringLiteral("Check your posture — shoulders back, screen at eye level.");
const QString blink = QStringLiteral("Blink slowly a few times.");

class Toast : public ::testing::Test {
protected:
    FakePlatform platform;
    ToastController toast{platform, platform.notices};

    void show(const QString &text = posture, const QString &symbol = QStringLiteral("figure.stand")) {
        toast.show(text, symbol);
    }
    static QWidget *panel() { return shownWindow(title); }
    static QImage picture() { return panel()->grab(panel()->contentsRect()).toImage(); }

    /// The rectangle of everything that is drawn on the material, symbol and round ends apart.
    static QRect textRect() {
        const QImage image = picture();
        const QColor material = image.pixelColor(40, 8);
        QRect text;
        for (int y = 4; y < image.height() - 4; ++y) {
            const int end = y >= 14 && y < 42 ? 372 : 350;
            for (int x = 45; x < end; ++x) {
                if (std::abs(image.pixelColor(x, y).lightness() - material.lightness()) > 40)
                    text |= QRect(x, y, 1, 1);
            }
        }
        return text;
    }
};

} // namespace

TEST_F(Toast, is_centred_24_points_below_the_top_of_the_visible_frame) {
    platform.fakeScreens.screens = {{QStringLiteral("A"), {0, 0, 1920, 1080}, {100, 30, 1820, 1000}, true}};
    show();
    EXPECT_EQ(slabOf(panel()), QRect(1010 - 190, 54, 380, 56));
}

TEST_F(Toast, without_a_main_screen_it_is_shown_at_the_origin) {
    platform.fakeScreens.screens.clear();
    show();
    EXPECT_EQ(slabOf(panel()), QRect(0, 0, 380, 56));
}

TEST_F(Toast, follows_its_screen_and_goes_when_it_would_have_gone) {
    show();
    platform.loop.advance(4);
    platform.fakeScreens.screens = {{QStringLiteral("A"), {0, 0, 1280, 720}, {0, 0, 1280, 720}, true}};
    tellThatScreensChanged();
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(slabOf(panel()), QRect(640 - 190, 24, 380, 56));
    platform.loop.advance(1.9);
    EXPECT_NE(panel(), nullptr);
    platform.loop.advance(0.2);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(Toast, goes_after_six_seconds) {
    show();
    platform.loop.advance(5.9);
    EXPECT_NE(panel(), nullptr);
    platform.loop.advance(0.2);
    EXPECT_EQ(panel(), nullptr);
    EXPECT_EQ(visibleWindows(title).size(), 1U) << "it fades out";
    platform.loop.advance(0.25);
    EXPECT_TRUE(visibleWindows(title).empty());
    EXPECT_EQ(platform.loop.timerCount(), 0U);
}

TEST_F(Toast, fades_in_and_out_within_a_quarter_of_a_second) {
    show();
    EXPECT_EQ(panel()->windowOpacity(), 0);
    platform.loop.advance(0.25);
    EXPECT_EQ(panel()->windowOpacity(), 1);
    toast.hide();
    platform.loop.advance(0.2);
    EXPECT_EQ(visibleWindows(title).size(), 1U);
    platform.loop.advance(0.05);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(Toast, a_second_reminder_replaces_the_first_and_restarts_the_six_seconds) {
    show();
    platform.loop.advance(4);
    show(blink, QStringLiteral("eye"));
    EXPECT_EQ(shownWindows(title).size(), 1U);
    platform.loop.advance(1);
    EXPECT_EQ(visibleWindows(title).size(), 1U);
    platform.loop.advance(4.5);
    EXPECT_NE(panel(), nullptr)
        << "nine and a half seconds after the first, five and a half after the second";
    platform.loop.advance(1);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(Toast, hiding_it_early_leaves_nothing_that_could_hide_the_next) {
    show();
    platform.loop.advance(3);
    toast.hide();
    platform.loop.advance(2);
    show(blink, QStringLiteral("eye"));
    platform.loop.advance(5);
    EXPECT_NE(panel(), nullptr);
    toast.hide();
    toast.hide();
}

TEST_F(Toast, lets_clicks_pass_and_never_takes_the_keyboard) {
    show();
    EXPECT_TRUE(panel()->windowFlags() & Qt::WindowTransparentForInput);
    EXPECT_TRUE(panel()->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_EQ(platform.layers.assignments.back().layer, WindowLayer::panel);
}

TEST_F(Toast, wraps_to_two_lines_and_clips_nothing) {
    show();
    const double line = QFontMetricsF(fonts::ui(13)).height();
    const QRect text = textRect();
    EXPECT_GT(text.height(), line);
    EXPECT_LT(text.height(), 2 * line + 2);
    EXPECT_LE(text.right(), 380 - 16);
    EXPECT_NEAR(text.center().y(), 28, 3);
}

TEST_F(Toast, its_two_lines_are_of_about_equal_length) {
    show();
    const double onOneLine = QFontMetricsF(fonts::ui(13)).horizontalAdvance(posture);
    EXPECT_LT(textRect().width(), 0.65 * onOneLine);
}

TEST_F(Toast, a_short_text_stands_on_one_line_in_the_middle) {
    show(blink, QStringLiteral("eye"));
    EXPECT_LT(textRect().height(), QFontMetricsF(fonts::ui(13)).height());
    EXPECT_NEAR(textRect().center().y(), 28, 3);
}

TEST_F(Toast, a_text_of_any_length_stays_within_two_lines) {
    const double line = QFontMetricsF(fonts::ui(13)).height();
    for (const QString &text : {posture.repeated(20), QStringLiteral("oneverylongword").repeated(30),
                                QStringLiteral("a\nb\nc\nd\ne"), QStringLiteral("漢字").repeated(100)}) {
        show(text);
        EXPECT_LE(textRect().height(), 2 * line + 2) << qPrintable(text);
        EXPECT_LE(textRect().right(), 380 - 15) << qPrintable(text);
    }
    show(QString());
    EXPECT_TRUE(textRect().isEmpty());
}

TEST_F(Toast, a_symbol_that_is_not_known_leaves_its_place_empty) {
    show(blink, QStringLiteral("no.such.symbol"));
    const QImage image = picture();
    const QColor material = image.pixelColor(40, 8);
    EXPECT_EQ(image.pixelColor(27, 28), material);
    EXPECT_FALSE(textRect().isEmpty());
}

TEST_F(Toast, can_go_while_it_is_shown) {
    {
        ToastController shortLived(platform, platform.notices);
        shortLived.show(blink, QStringLiteral("eye"));
        shortLived.show(posture, QStringLiteral("figure.stand"));
    }
    platform.loop.advance(10);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(Toast, has_no_black_corners_without_a_compositor) {
    platform.layers.blends = false;
    show();
    const QImage image = picture();
    const QRegion shape = platform.layers.lastCut;
    ASSERT_FALSE(shape.isEmpty());
    EXPECT_FALSE(shape.contains(QPoint(0, 0)));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < 28; ++x) {
            const QPoint at(x, y);
            if (shape.contains(at)) {
                ASSERT_EQ(image.pixelColor(at).alpha(), 255);
                ASSERT_GT(image.pixelColor(at).lightness(), 100) << x << ", " << y;
            }
        }
    }
}

} // namespace pavonel::test
