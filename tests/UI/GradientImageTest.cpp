#include "UI/BackgroundImage.h"
#include "UI/Theme.h"

#include <array>
#include <set>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Channels = std::array<double, 3>;
constexpr QSize screen(1920, 1080);

Channels channelsOf(QRgb pixel) {
    return {double(qRed(pixel)), double(qGreen(pixel)), double(qBlue(pixel))};
}

/// What the eye sees there: the mean over a square of this many pixels.
Channels meanAround(const QImage &image, QPoint middle, int side = 16) {
    Channels sum{};
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const Channels pixel =
                channelsOf(image.pixel(middle.x() + x - side / 2, middle.y() + y - side / 2));
            for (std::size_t i = 0; i < sum.size(); ++i)
                sum[i] += pixel[i] / (side * side);
        }
    }
    return sum;
}

Channels mix(const Background &theme, double t) {
    const auto at = [t](float first, float last) { return 255 * (first + (last - first) * t); };
    const QColor &a = theme.colors.front();
    const QColor &b = theme.colors.back();
    return {at(a.redF(), b.redF()), at(a.greenF(), b.greenF()), at(a.blueF(), b.blueF())};
}

void expectNear(const Channels &seen, const Channels &wanted, double tolerance) {
    for (std::size_t i = 0; i < seen.size(); ++i)
        EXPECT_NEAR(seen[i], wanted[i], tolerance) << "channel " << i;
}

QImage imageOf(const char *name, QSize size = screen) {
    for (const Background &theme : Theme::gradients()) {
        if (theme.name == QString::fromUtf8(name))
            return gradientImage(theme, size);
    }
    return {};
}

} // namespace

TEST(GradientImage, the_first_colour_is_in_the_left_upper_corner_and_the_last_in_the_right_lower_one) {
    for (const Background &theme : Theme::gradients()) {
        SCOPED_TRACE(theme.name.toStdString());
        const QImage image = gradientImage(theme, screen);
        expectNear(channelsOf(image.pixel(0, 0)), mix(theme, 0), 1);
        expectNear(channelsOf(image.pixel(1919, 1079)), mix(theme, 1), 1);
    }
}

TEST(GradientImage, the_middle_and_the_other_two_corners_are_half_way) {
    for (const Background &theme : Theme::gradients()) {
        SCOPED_TRACE(theme.name.toStdString());
        const QImage image = gradientImage(theme, screen);
        expectNear(meanAround(image, {960, 540}), mix(theme, 0.5), 0.15);
        expectNear(channelsOf(image.pixel(1919, 0)), mix(theme, 0.5), 1);
        expectNear(channelsOf(image.pixel(0, 1079)), mix(theme, 0.5), 1);
    }
}

TEST(GradientImage, colours_are_equal_along_lines_that_are_parallel_to_the_other_diagonal) {
    const QImage image = imageOf("Dusk");
    for (const double t : {0.2, 0.35, 0.45}) {
        const Channels onTheLeft = meanAround(image, {16, int(1080 * (2 * t - 16 / 1920.0))});
        const Channels onTheTop = meanAround(image, {int(1920 * (2 * t - 16 / 1080.0)), 16});
        expectNear(onTheLeft, onTheTop, 0.3);
    }
}

TEST(GradientImage, steps_between_levels_are_dithered_so_that_there_are_no_bands) {
    const QImage image = imageOf("Night");
    const Background &theme = Theme::gradient(0);
    for (int x = 16; x < 1900; x += 40)
        expectNear(meanAround(image, {x, 540}), mix(theme, (x / 1920.0 + 0.5) / 2), 0.15);
    int mixedSquares = 0;
    for (int x = 0; x < 1920; x += 8) {
        std::set<QRgb> levels;
        for (int i = 0; i < 64; ++i)
            levels.insert(image.pixel(x + i % 8, 540 + i / 8));
        mixedSquares += levels.size() > 1;
    }
    EXPECT_GT(mixedSquares, 200) << "of 240";
}

TEST(GradientImage, plain_black_is_black_in_every_pixel) {
    const QImage image = imageOf("Plain black");
    QImage black(screen, QImage::Format_RGB32);
    black.fill(Qt::black);
    EXPECT_EQ(image, black);
}

TEST(GradientImage, every_pixel_is_opaque_whatever_the_size) {
    for (const QSize size : {QSize(1, 1), QSize(3, 5), QSize(17, 2), QSize(641, 3)}) {
        const QImage image = imageOf("Sand", size);
        ASSERT_EQ(image.size(), size);
        for (int i = 0; i < size.width() * size.height(); ++i)
            EXPECT_EQ(qAlpha(image.pixel(i % size.width(), i / size.width())), 255);
    }
}

TEST(GradientImage, the_ends_of_the_scale_do_not_wrap_around) {
    for (const auto &colors :
         {std::array<QColor, 2>{Qt::white, Qt::black}, {Qt::black, Qt::white}, {Qt::white, Qt::white}}) {
        const Background theme{0, QStringLiteral("Steep"), colors};
        const QImage image = gradientImage(theme, {333, 222});
        for (int y = 0; y < 222; ++y) {
            for (int x = 0; x < 333; ++x)
                expectNear(channelsOf(image.pixel(x, y)), mix(theme, ((x + 0.5) / 333 + (y + 0.5) / 222) / 2),
                           1.1);
        }
    }
}

TEST(GradientImage, no_size_yields_no_image) {
    EXPECT_TRUE(imageOf("Night", {0, 10}).isNull());
}

} // namespace pavonel::test
