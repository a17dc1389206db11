#include "UI/BreakOverlayView.h"

#include "UI/BackgroundImage.h"
#include "UI/Backgrounds.h"
#include "UI/BreakScreenText.h"
#include "UI/Ring.h"
#include "UI/SkipButton.h"
#include "UI/Theme.h"
#include "support/PaintSpy.h"
#include "support/Scenario.h"
#include "support/windows.h"

#include <QPainter>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr QSize wholeScreen(1920, 1080);
constexpr int plainBlack = 5;

class BreakScreen : public ::testing::Test {
protected:
    BreakScreen() { scenario.settings.messages = QStringList{QStringLiteral("Look far away.")}; }

    void startBreak(Seconds duration = 20, const QString &title = QStringLiteral("Micro break")) {
        scenario.controller.startBreak(BreakKind::micro, BreakController::Initiator::user, duration, title);
    }

    BreakOverlayView &show(BreakOverlayView::Role role = BreakOverlayView::Role::primary,
                           QSize size = wholeScreen) {
        view.emplace(scenario.controller, scenario.settings, scenario.platform, backgrounds, role);
        view->resize(size);
        view->show();
        paintDue();
        return *view;
    }

    /// Lets what was asked to be painted be painted.
    static void paintDue() { QApplication::processEvents(); }

    QImage picture(double ratio = 1) {
        QImage image(view->size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::magenta);
        view->render(&image);
        return image;
    }

    /// Brightness on plain black, at a place in points.
    int brightness(double x, double y, double ratio = 1) {
        return qGreen(picture(ratio).pixel(int(x * ratio), int(y * ratio)));
    }

    /// Where something white lies within a rectangle.
    static QRect inkIn(const QImage &image, const QRectF &rect) {
        QRect ink;
        const QRect within = rect.toAlignedRect() & image.rect();
        for (int y = within.top(); y <= within.bottom(); ++y) {
            for (int x = within.left(); x <= within.right(); ++x) {
                if (qGreen(image.pixel(x, y)) > 40)
                    ink |= QRect(x, y, 1, 1);
            }
        }
        return ink;
    }

    QRectF ringRect() const { return view->layoutOfScreen().ring; }

    Scenario scenario;
    Backgrounds backgrounds{scenario.settings, scenario.platform.loop};
    std::optional<BreakOverlayView> view;
};

} // namespace

TEST_F(BreakScreen, progress_is_the_share_that_is_over) {
    startBreak(20);
    EXPECT_EQ(show().progress(), 0);
    scenario.advance(5);
    EXPECT_EQ(view->progress(), 0.25);
}

TEST_F(BreakScreen, a_break_without_length_draws_an_empty_arc) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(0);
    EXPECT_EQ(show().progress(), 0);
    const QPointF top(ringRect().center().x() + 2, ringRect().top() + 3);
    EXPECT_NEAR(brightness(top.x(), top.y()), 255 * 0.12, 2) << "the track alone";
}

TEST_F(BreakScreen, times_that_are_no_numbers_are_no_harm) {
    startBreak(20);
    show();
    scenario.controller.breakRemaining = std::numeric_limits<double>::quiet_NaN();
    scenario.platform.loop.advance(1);
    EXPECT_EQ(view->progress(), 0);
    scenario.controller.breakTotal = std::numeric_limits<double>::infinity();
    scenario.controller.breakRemaining = std::numeric_limits<double>::infinity();
    scenario.platform.loop.advance(1);
    EXPECT_EQ(view->progress(), 0);
    paintDue();
}

TEST_F(BreakScreen, the_time_is_rounded_to_whole_seconds) {
    startBreak(3600);
    EXPECT_EQ(show().timeText(), QStringLiteral("1:00:00"));
    for (const auto &[remaining, text] : {std::pair{3599.0, "59:59"}, {59.6, "1:00"}, {5.0, "0:05"}}) {
        scenario.controller.breakRemaining = remaining;
        scenario.platform.loop.advance(0);
        EXPECT_EQ(view->timeText(), QString::fromUtf8(text));
    }
}

TEST_F(BreakScreen, the_title_is_in_capitals_above_the_ring_and_everything_is_centred) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak();
    const BreakLayout &layout = show().layoutOfScreen();
    const QImage image = picture();
    for (const QRectF &rect : {layout.title, layout.ring, layout.message, layout.skip}) {
        const QRect ink = inkIn(image, rect);
        EXPECT_NEAR(ink.left() + ink.right() + 1, 1920, 4);
    }
    EXPECT_LE(inkIn(image, layout.title).height(), 11)
        << "capitals of a 13 point font, nothing below the line";
}

TEST_F(BreakScreen, the_ring_is_240_wide_its_line_6_and_the_arc_grows_clockwise_from_twelve) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(20);
    scenario.controller.breakRemaining = 10;
    show();
    const QRectF ring = ringRect();
    const double middle = ring.center().y();
    EXPECT_EQ(ring.size(), QSizeF(240, 240));
    const double track = 255 * 0.12;
    EXPECT_NEAR(brightness(ring.left() + 3, middle), track, 2) << "nine o'clock";
    EXPECT_NEAR(brightness(ring.right() - 3, middle), track * 0.15 + 255 * 0.85, 2) << "three o'clock";
    EXPECT_NEAR(brightness(ring.left() + 1, middle), track, 2);
    EXPECT_NEAR(brightness(ring.left() + 5, middle), track, 2);
    EXPECT_EQ(brightness(ring.left() - 2, middle), 0) << "outside of the line";
    EXPECT_EQ(brightness(ring.left() + 8, middle), 0) << "inside of the line";
}

TEST_F(BreakScreen, the_arc_glides_for_a_second_after_each_change) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(4);
    show();
    const QPointF half(ringRect().center().x() + 10, ringRect().bottom() - 3); // shortly before six o'clock
    scenario.advance(2);                                                       // the change to one half
    EXPECT_LT(brightness(half.x(), half.y()), 60);
    scenario.platform.loop.advance(0.99);
    EXPECT_GT(brightness(half.x(), half.y()), 200);
}

TEST_F(BreakScreen, with_reduced_motion_the_arc_steps) {
    scenario.platform.colours.current.reducedMotion = true;
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(4);
    show();
    scenario.advance(1);
    paintDue();
    PaintSpy spy(*view);
    scenario.advance(1);
    paintDue();
    EXPECT_EQ(spy.paints, 1) << "the arc and the time together";
    scenario.platform.loop.advance(0.9);
    paintDue();
    EXPECT_EQ(spy.paints, 1);
}

TEST_F(BreakScreen, while_the_arc_glides_only_a_piece_of_the_ring_is_painted) {
    startBreak(20);
    show();
    scenario.advance(3);
    paintDue();
    PaintSpy spy(*view);
    for (int frame = 0; frame < 20; ++frame) {
        scenario.platform.loop.advance(0.03);
        paintDue();
    }
    EXPECT_GT(spy.paints, 10);
    const QRectF ring = ringRect().adjusted(-1, -1, 1, 1);
    EXPECT_TRUE(ring.contains(spy.region.boundingRect()));
    EXPECT_LT(spy.region.boundingRect().width(), 50) << "the end of the arc, not the ring";
}

TEST_F(BreakScreen, a_frame_of_the_arc_is_painted_in_the_wake_up_that_brings_it) {
    startBreak(20);
    show();
    scenario.advance(3);
    paintDue();
    PaintSpy spy(*view);
    scenario.platform.loop.advance(0.1);
    EXPECT_GT(spy.paints, 0);
}

TEST_F(BreakScreen, the_time_changes_without_the_ring_being_drawn) {
    startBreak(20);
    show();
    QImage image(wholeScreen, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QImage untouched = image.copy();
    QPainter painter(&image);
    ring::paint(painter, ringRect(), 0.5, breakScreen::timeRect(ringRect()).toAlignedRect());
    EXPECT_EQ(image, untouched);
}

TEST_F(BreakScreen, the_pieces_add_up_to_what_a_whole_painting_shows) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(7);
    show();
    for (int frame = 0; frame < 180; ++frame) {
        scenario.platform.loop.advance(1 / 30.0);
        paintDue();
    }
    const QImage elements = view->screen() ? view->grab().toImage() : QImage();
    view->repaint();
    const QImage whole = picture();
    ASSERT_EQ(elements.size(), whole.size());
    const QRect ring = ringRect().toAlignedRect();
    for (int y = ring.top(); y <= ring.bottom(); ++y) {
        for (int x = ring.left(); x <= ring.right(); ++x)
            ASSERT_NEAR(qGreen(elements.pixel(x, y)), qGreen(whole.pixel(x, y)), 8) << x << ' ' << y;
    }
}

TEST_F(BreakScreen, where_the_desktop_has_insets_what_moves_is_painted_in_one_and_the_window_never_again) {
    scenario.platform.layers.givesInsets = true;
    startBreak(7);
    show();
    view->settle();
    PaintSpy spy(*view);
    for (int frame = 0; frame < 180; ++frame) {
        scenario.platform.loop.advance(1 / 30.0);
        paintDue();
    }
    EXPECT_EQ(spy.paints, 0);
    const QRect place = scenario.platform.layers.insetPlace;
    EXPECT_TRUE(place.contains(ringRect().toAlignedRect()));
    const QImage whole = picture().copy(place);
    const QImage &pieces = scenario.platform.layers.insetShown;
    ASSERT_EQ(pieces.size(), whole.size());
    for (int y = 0; y < whole.height(); ++y) {
        for (int x = 0; x < whole.width(); ++x)
            ASSERT_NEAR(qGreen(pieces.pixel(x, y)), qGreen(whole.pixel(x, y)), 8) << x << ' ' << y;
    }
}

TEST_F(BreakScreen, frozen_the_window_shows_what_the_inset_did) {
    scenario.platform.layers.givesInsets = true;
    startBreak(7);
    show();
    view->settle();
    scenario.advance(3);
    PaintSpy spy(*view);
    view->freeze();
    EXPECT_TRUE(spy.region.boundingRect().contains(ringRect().toAlignedRect()));
}

TEST_F(BreakScreen, an_inset_follows_the_ring_to_its_new_place) {
    scenario.platform.layers.givesInsets = true;
    startBreak(20);
    show();
    view->settle();
    view->resize(1280, 720);
    paintDue();
    EXPECT_TRUE(scenario.platform.layers.insetPlace.contains(ringRect().toAlignedRect()));
}

TEST_F(BreakScreen, a_second_of_the_clock_paints_no_more_than_the_ring) {
    startBreak(300);
    show();
    PaintSpy spy(*view);
    scenario.advance(3);
    paintDue();
    EXPECT_TRUE(ringRect().adjusted(-2, -2, 2, 2).contains(spy.region.boundingRect()));
}

TEST_F(BreakScreen, a_secondary_screen_shows_only_the_background_and_never_paints_again) {
    startBreak(20);
    show(BreakOverlayView::Role::secondary);
    EXPECT_EQ(picture(), gradientImage(Theme::gradient(0), wholeScreen));
    EXPECT_FALSE(view->skipButton());
    PaintSpy spy(*view);
    scenario.advance(15);
    paintDue();
    EXPECT_EQ(spy.paints, 0);
}

TEST_F(BreakScreen, another_theme_is_painted_on_every_screen) {
    startBreak(20);
    show(BreakOverlayView::Role::secondary);
    scenario.settings.backgroundStyle = 3;
    scenario.platform.loop.advance(0);
    paintDue();
    EXPECT_EQ(picture(), gradientImage(Theme::gradient(3), wholeScreen));
}

TEST_F(BreakScreen, the_skip_button_comes_and_goes_with_the_settings) {
    startBreak(20);
    show();
    EXPECT_TRUE(view->skipButton()->isVisible());
    scenario.settings.strictMode = true;
    scenario.platform.loop.advance(0);
    EXPECT_FALSE(view->skipButton()->isVisible());
    EXPECT_TRUE(view->layoutOfScreen().skip.isEmpty());
    scenario.settings.strictMode = false;
    scenario.platform.loop.advance(0);
    EXPECT_TRUE(view->skipButton()->isVisible());
}

TEST_F(BreakScreen, in_strict_mode_or_without_allow_skip_there_is_no_skip_button) {
    startBreak(20);
    for (const auto &[allowSkip, strictMode] : {std::pair{true, true}, {false, true}, {false, false}}) {
        scenario.settings.allowSkip = allowSkip;
        scenario.settings.strictMode = strictMode;
        EXPECT_FALSE(show().skipButton()->isVisible());
    }
}

TEST_F(BreakScreen, the_skip_button_ends_the_break_early) {
    startBreak(20);
    click(*show().skipButton());
    EXPECT_EQ(scenario.controller.phase, Phase::counting);
    EXPECT_EQ(scenario.stats.today().skipped, 1);
}

TEST_F(BreakScreen, the_skip_button_is_a_capsule_around_its_text) {
    startBreak(20);
    const SkipButton &button = *show().skipButton();
    EXPECT_EQ(button.text(), QStringLiteral("Skip break  ·  esc"));
    const QFontMetricsF metrics(button.font());
    EXPECT_NEAR(button.width(), metrics.horizontalAdvance(button.text()) + 2 * 18, 1);
    EXPECT_NEAR(button.height(), metrics.height() + 2 * 9, 1);
    EXPECT_EQ(button.geometry().topLeft(), view->layoutOfScreen().skip.topLeft().toPoint());
    EXPECT_EQ(button.focusPolicy(), Qt::NoFocus) << "a typed space must not end the break";
}

TEST_F(BreakScreen, an_empty_title_and_message_keep_their_lines) {
    startBreak(20);
    const BreakLayout full = show().layoutOfScreen();
    scenario.controller.breakTitle = QString();
    scenario.controller.breakMessage = QString();
    scenario.platform.loop.advance(0);
    EXPECT_EQ(view->layoutOfScreen().ring, full.ring);
    EXPECT_EQ(view->layoutOfScreen().skip, full.skip);
    paintDue();
}

TEST_F(BreakScreen, a_message_of_10000_characters_leaves_ring_and_skip_button_on_the_screen) {
    scenario.settings.messages = QStringList{QStringLiteral("Rest your eyes. ").repeated(625)};
    startBreak(20);
    for (const QSize size : {wholeScreen, QSize(1280, 720), QSize(1080, 1920)}) {
        show(BreakOverlayView::Role::primary, size);
        const QRectF room = QRectF(QPointF(), QSizeF(size)).adjusted(60, 60, -60, -60);
        EXPECT_TRUE(room.contains(view->layoutOfScreen().title));
        EXPECT_TRUE(room.contains(ringRect()));
        EXPECT_TRUE(room.contains(view->skipButton()->geometry()));
    }
}

TEST_F(BreakScreen, on_small_screens_nothing_is_lost) {
    scenario.settings.messages = QStringList{
        QStringLiteral("Look out of the window at the farthest thing you can see, and stay with it.")};
    startBreak(600);
    for (const QSize small : {QSize(640, 360), QSize(683, 384), QSize(800, 480), QSize(1024, 600)}) {
        const BreakLayout &layout = show(BreakOverlayView::Role::primary, small).layoutOfScreen();
        const QRectF whole(QPointF(), small);
        QRectF above(0, 0, 1, 1);
        for (const QRectF &part : {layout.title, layout.ring, layout.message, layout.skip}) {
            EXPECT_TRUE(whole.contains(part)) << small.height();
            EXPECT_GE(part.top(), above.bottom());
            above = part;
        }
        EXPECT_EQ(view->skipButton()->geometry().size(), view->skipButton()->sizeHint());
        const double line = MessageText::lineHeight(breakScreen::messageFont());
        EXPECT_GE(layout.message.height(), 2 * line) << "the message is cut";
        EXPECT_TRUE(layout.ring.contains(inkIn(picture(), breakScreen::timeRect(layout.ring))));
    }
}

TEST_F(BreakScreen, a_long_title_stays_on_one_line_and_on_the_screen) {
    startBreak(20, QStringLiteral("Lunch with everybody ").repeated(100));
    show();
    EXPECT_LT(view->layoutOfScreen().title.height(), 20);
    EXPECT_EQ(view->layoutOfScreen().title.width(), 1920 - 120);
}

TEST_F(BreakScreen, title_and_message_follow_the_controller) {
    startBreak(20);
    show();
    PaintSpy spy(*view);
    scenario.controller.breakMessage = QStringLiteral("Another one.");
    scenario.platform.loop.advance(0);
    paintDue();
    EXPECT_EQ(view->accessibleDescription(), QStringLiteral("Another one."));
    EXPECT_TRUE(spy.region.contains(view->layoutOfScreen().message.toAlignedRect()));
}

TEST_F(BreakScreen, frozen_it_keeps_its_last_state) {
    startBreak(2);
    show();
    scenario.controller.breakRemaining = 0;
    view->freeze();
    scenario.controller.breakRemaining = 17;
    scenario.platform.loop.advance(2);
    EXPECT_EQ(view->timeText(), QStringLiteral("0:00"));
}

TEST_F(BreakScreen, many_hours_stay_within_the_ring) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(100 * 3600);
    show();
    const QRectF inside = ringRect().adjusted(8, 60, -8, -60);
    const QRect ink = inkIn(picture(), inside);
    EXPECT_GT(ink.left(), inside.left() + 4);
    EXPECT_LT(ink.right(), inside.right() - 4);
}

TEST_F(BreakScreen, device_pixels_are_used_at_15_and_2_times) {
    scenario.settings.backgroundStyle = plainBlack;
    startBreak(20);
    scenario.controller.breakRemaining = 10;
    show(BreakOverlayView::Role::primary, {1280, 720});
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const QRectF ring = ringRect();
        SCOPED_TRACE(ratio);
        EXPECT_NEAR(brightness(ring.left() + 3, ring.center().y(), ratio), 255 * 0.12, 2);
        EXPECT_EQ(brightness(ring.left() - 1.5, ring.center().y(), ratio), 0);
        EXPECT_EQ(brightness(ring.left() + 7.5, ring.center().y(), ratio), 0);
    }
}

TEST_F(BreakScreen, the_gradient_is_made_of_device_pixels) {
    startBreak(20);
    show(BreakOverlayView::Role::secondary, {1280, 720});
    for (const double ratio : {1.5, 2.0}) {
        const QImage image = picture(ratio);
        const QImage gradient = gradientImage(Theme::gradient(0), image.size());
        int different = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                different += image.pixel(x, y) != gradient.pixel(x, y);
        }
        EXPECT_EQ(different, 0) << "at " << ratio;
    }
}

} // namespace pavonel::test
