#include "UI/Fonts.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <vector>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

QFontMetricsF metricsOf(const QFont &font) {
    return QFontMetricsF(font);
}

QImage drawn(const QString &text) {
    QImage image(200, 60, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setFont(fonts::ui(40, QFont::Thin));
    painter.setPen(Qt::white);
    fonts::drawTabular(painter, QPointF(10, 45), text);
    return image;
}

/// The widths of the empty columns between the characters.
std::vector<int> gapsIn(const QImage &image) {
    std::vector<int> gaps;
    int lastInk = -1;
    for (int x = 0; x < image.width(); ++x) {
        bool ink = false;
        for (int y = 0; y < image.height(); ++y)
            ink |= qGray(image.pixel(x, y)) > 60;
        if (ink && lastInk >= 0 && x > lastInk + 1)
            gaps.push_back(x - lastInk - 1);
        if (ink)
            lastInk = x;
    }
    return gaps;
}

} // namespace

TEST(Fonts, the_family_is_inter_where_it_is_installed_else_the_systems) {
    const QString expected = QFontDatabase::hasFamily(QStringLiteral("Inter"))
                                 ? QStringLiteral("Inter")
                                 : QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    EXPECT_EQ(fonts::ui(13).family(), expected);
}

TEST(Fonts, sizes_are_device_independent_pixels) {
    EXPECT_EQ(QFontInfo(fonts::ui(26, QFont::Light)).pixelSize(), 26);
}

TEST(Fonts, a_clock_of_equal_length_is_equally_wide_whatever_its_digits) {
    const auto metrics = metricsOf(fonts::ui(64, QFont::Thin));
    EXPECT_DOUBLE_EQ(fonts::tabularWidth(metrics, QStringLiteral("1:11")),
                     fonts::tabularWidth(metrics, QStringLiteral("0:48")));
}

TEST(Fonts, a_digit_does_not_move_when_those_before_it_change) {
    const QRect lastDigit(75, 0, 125, 60);
    EXPECT_EQ(drawn(QStringLiteral("1:17")).copy(lastDigit), drawn(QStringLiteral("0:47")).copy(lastDigit));
}

TEST(Fonts, a_one_beside_a_colon_stands_no_farther_from_it_than_from_its_other_neighbour) {
    const auto before = gapsIn(drawn(QStringLiteral("0:13"))); // 0 : 1 3
    ASSERT_EQ(before.size(), 3U);
    EXPECT_LE(before[1], before[2]);
    const auto behind = gapsIn(drawn(QStringLiteral("31:00"))); // 3 1 : 0 0
    ASSERT_EQ(behind.size(), 4U);
    EXPECT_LE(behind[1], behind[0]);
}

} // namespace pavonel::test
