#include "UI/Symbol.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QStringList wanted{QStringLiteral("eye"),
                         QStringLiteral("figure.walk"),
                         QStringLiteral("figure.stand"),
                         QStringLiteral("calendar"),
                         QStringLiteral("xmark"),
                         QStringLiteral("cup.and.saucer"),
                         QStringLiteral("pause.circle"),
                         QStringLiteral("arrow.up.left.and.arrow.down.right"),
                         QStringLiteral("speaker.wave.2"),
                         QStringLiteral("mic"),
                         QStringLiteral("record.circle"),
                         QStringLiteral("brain.head.profile"),
                         QStringLiteral("timer"),
                         QStringLiteral("iphone"),
                         QStringLiteral("paintbrush"),
                         QStringLiteral("heart"),
                         QStringLiteral("chart.bar"),
                         QStringLiteral("gearshape"),
                         QStringLiteral("xmark.circle.fill"),
                         QStringLiteral("checkmark.circle.fill"),
                         QStringLiteral("plus")};

/// The rectangle of everything that is not transparent.
QRect inkOf(const QImage &image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 40)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

} // namespace

TEST(Symbol, every_name_of_the_product_has_a_drawing) {
    for (const QString &name : wanted)
        EXPECT_TRUE(Symbol::names().contains(name)) << qPrintable(name);
}

TEST(Symbol, a_name_that_is_not_known_yields_no_image) {
    for (const char *name : {"", "eyes", "EYE", "..", "../menubar", "/symbols/eye", "eye.svg"})
        EXPECT_TRUE(Symbol::image(QString::fromUtf8(name), 18, Qt::black, 1).isNull()) << name;
}

TEST(Symbol, a_size_without_pixels_yields_no_image) {
    for (const qreal side : {0.0, -18.0, 1e12, std::numeric_limits<qreal>::quiet_NaN()})
        EXPECT_TRUE(Symbol::image(QStringLiteral("eye"), side, Qt::black, 1).isNull()) << side;
}

TEST(Symbol, an_image_has_the_asked_size_at_any_ratio) {
    for (const qreal ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const QImage image = Symbol::image(QStringLiteral("mic"), 20, Qt::black, ratio);
        EXPECT_EQ(image.size(), QSize(qRound(20 * ratio), qRound(20 * ratio)));
        EXPECT_EQ(image.devicePixelRatio(), ratio);
    }
}

TEST(Symbol, a_drawing_lends_only_its_shape) {
    const QColor tint(200, 30, 60);
    for (const QString &name : Symbol::names()) {
        const QImage image = Symbol::image(name, 24, tint, 2);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                ASSERT_TRUE(pixel.alpha() < 255 || pixel == tint) << qPrintable(name);
            }
        }
    }
}

TEST(Symbol, every_drawing_stays_within_its_square_and_fills_it_well) {
    for (const QString &name : Symbol::names()) {
        const QImage image = Symbol::image(name, 24, Qt::black, 4);
        const QRect ink = inkOf(image);
        EXPECT_TRUE(image.rect().adjusted(1, 1, -1, -1).contains(ink)) << qPrintable(name);
        EXPECT_GE(std::max(ink.width(), ink.height()), 96 / 2) << qPrintable(name);
    }
}

TEST(Symbol, all_drawings_share_one_grid_and_one_pen) {
    const QDir folder(QStringLiteral(PAVONEL_SOURCE_DIR "/resources/symbols"));
    ASSERT_FALSE(folder.entryList(QDir::Files).isEmpty());
    for (const QString &name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString svg = QString::fromUtf8(file.readAll());
        EXPECT_TRUE(svg.contains(QStringLiteral("viewBox=\"0 0 24 24\""))) << qPrintable(name);
        EXPECT_EQ(svg.count(QStringLiteral("stroke-width")), 1) << qPrintable(name);
        EXPECT_TRUE(svg.contains(QStringLiteral("stroke-width=\"1.8\" stroke-linecap=\"round\" "
                                                "stroke-linejoin=\"round\"")))
            << qPrintable(name);
    }
}

TEST(Symbol, every_drawing_in_the_folder_is_embedded) {
    QStringList files = QDir(QStringLiteral(PAVONEL_SOURCE_DIR "/resources/symbols")).entryList(QDir::Files);
    files.replaceInStrings(QRegularExpression(QStringLiteral("\\.svg$")), QString());
    files.sort();
    QStringList embedded = Symbol::names();
    embedded.sort();
    EXPECT_EQ(files, embedded);
}

TEST(MenuBarMark, is_18_points_square_with_a_picture_for_each_ratio) {
    EXPECT_EQ(Symbol::mark(Qt::black, 1).size(), QSize(18, 18));
    EXPECT_EQ(Symbol::mark(Qt::black, 2).size(), QSize(36, 36));
    EXPECT_EQ(Symbol::mark(Qt::black, 2).deviceIndependentSize(), QSizeF(18, 18));
}

TEST(MenuBarMark, takes_the_colour_of_its_surroundings) {
    const QImage mark = Symbol::mark(Qt::red, 2);
    EXPECT_EQ(mark.pixelColor(mark.width() * 10 / 18, mark.height() * 8 / 18), QColor(Qt::red));
    EXPECT_EQ(mark.pixelColor(0, 0).alpha(), 0);
}

} // namespace pavonel::test
