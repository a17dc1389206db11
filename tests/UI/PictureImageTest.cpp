#include "Platform/ForeignFile.h"
#include "UI/BackgroundImage.h"
#include "support/files.h"

#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace pavonel::test {

namespace {

constexpr QSize screen(1600, 900);
constexpr double dimmed = 1 - 0.45;

class PictureImage : public ::testing::Test {
protected:
    QString path(const char *name) const { return folder_.filePath(QString::fromUtf8(name)); }

    QString save(const QImage &image, const char *name) const {
        EXPECT_TRUE(image.save(path(name))) << name;
        return path(name);
    }

    /// Green in the middle third of its height (or width), red before and blue behind it.
    static QImage striped(QSize size, Qt::Orientation along) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::green);
        QPainter painter(&image);
        const bool down = along == Qt::Vertical;
        const QSize third =
            down ? QSize(size.width(), size.height() / 3) : QSize(size.width() / 3, size.height());
        painter.fillRect(QRect(QPoint(0, 0), third), Qt::red);
        painter.fillRect(QRect(QPoint(size.width() - third.width(), size.height() - third.height()), third),
                         Qt::blue);
        return image;
    }

private:
    QTemporaryDir folder_;
};

QImage pictureIn(const QString &path, QSize size) {
    const auto file = readForeignFile(path, largestPictureFile);
    return file ? pictureImage(*file, size) : QImage();
}

bool isAbout(const QColor &seen, const QColor &wanted) {
    constexpr int tolerance = 4; // of a lossy format
    return std::abs(seen.red() - wanted.red()) <= tolerance &&
           std::abs(seen.green() - wanted.green()) <= tolerance &&
           std::abs(seen.blue() - wanted.blue()) <= tolerance;
}

const QColor dimGreen = QColor::fromRgb(0, int(255 * dimmed), 0);
const QColor dimRed = QColor::fromRgb(int(255 * dimmed), 0, 0);
const QColor dimBlue = QColor::fromRgb(0, 0, int(255 * dimmed));

} // namespace

TEST_F(PictureImage, a_drawing_is_none_since_it_can_name_other_files) {
    const QString inner = save(striped({90, 60}, Qt::Horizontal), "inner.png");
    const QString drawing = path("drawing.svg");
    writeFile(drawing, QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' width='90' height='60' "
                                      "xmlns:xlink='http://www.w3.org/1999/xlink'>"
                                      "<image width='90' height='60' xlink:href='%1'/></svg>")
                           .arg(inner)
                           .toUtf8());
    EXPECT_TRUE(pictureIn(drawing, screen).isNull());
    for (const QByteArray &format : pictureFormats())
        EXPECT_FALSE(format.startsWith("svg")) << format.constData();
    EXPECT_TRUE(pictureFormats().contains("png"));
}

TEST_F(PictureImage, is_dimmed_by_045_of_black) {
    QImage white(64, 36, QImage::Format_RGB32);
    white.fill(Qt::white);
    const QImage image = pictureIn(save(white, "white.png"), screen);
    ASSERT_EQ(image.size(), screen);
    EXPECT_NEAR(qRed(image.pixel(800, 450)), 255 * dimmed, 1);
    EXPECT_EQ(image.pixel(0, 0), image.pixel(1599, 899));
}

TEST_F(PictureImage, a_portrait_picture_on_a_landscape_screen_fills_the_width_and_loses_top_and_bottom) {
    const QImage image = pictureIn(save(striped({600, 1800}, Qt::Vertical), "portrait.png"), screen);
    ASSERT_EQ(image.size(), screen);
    for (const QPoint corner : {QPoint(0, 0), QPoint(1599, 0), QPoint(0, 899), QPoint(1599, 899)})
        EXPECT_TRUE(isAbout(image.pixelColor(corner), dimGreen)) << corner.x() << ' ' << corner.y();
}

TEST_F(PictureImage, a_wide_picture_fills_the_height_and_loses_both_sides) {
    const QImage image = pictureIn(save(striped({3000, 500}, Qt::Horizontal), "wide.jpg"), screen);
    ASSERT_EQ(image.size(), screen);
    for (const QPoint corner : {QPoint(0, 0), QPoint(1599, 0), QPoint(0, 899), QPoint(1599, 899)})
        EXPECT_TRUE(isAbout(image.pixelColor(corner), dimGreen)) << corner.x() << ' ' << corner.y();
}

TEST_F(PictureImage, a_picture_of_the_screens_aspect_is_shown_whole) {
    const QImage image = pictureIn(save(striped({800, 450}, Qt::Vertical), "same.png"), screen);
    EXPECT_TRUE(isAbout(image.pixelColor(800, 5), dimRed));
    EXPECT_TRUE(isAbout(image.pixelColor(800, 450), dimGreen));
    EXPECT_TRUE(isAbout(image.pixelColor(800, 894), dimBlue));
}

TEST_F(PictureImage, a_camera_held_upright_is_turned_upright) {
    const QString file = path("turned.jpg");
    QImageWriter writer(file);
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    ASSERT_TRUE(writer.write(striped({900, 1600}, Qt::Horizontal)));
    const QImage image = pictureIn(file, screen);
    EXPECT_TRUE(isAbout(image.pixelColor(800, 5), dimRed)) << "the left edge as stored is the upper one";
    EXPECT_TRUE(isAbout(image.pixelColor(800, 894), dimBlue));
}

TEST_F(PictureImage, what_is_transparent_is_black) {
    QImage glass(32, 18, QImage::Format_ARGB32);
    glass.fill(Qt::transparent);
    EXPECT_EQ(pictureIn(save(glass, "glass.png"), screen).pixel(10, 10), qRgb(0, 0, 0));
}

TEST_F(PictureImage, a_folder_a_missing_file_and_a_file_of_garbage_are_no_pictures) {
    writeFile(path("garbage.jpg"), QByteArray(100'000, 'x'));
    EXPECT_TRUE(pictureIn(path("garbage.jpg"), screen).isNull());
    EXPECT_TRUE(pictureIn(QDir::tempPath(), screen).isNull());
    EXPECT_TRUE(pictureIn(path("missing.png"), screen).isNull());
    EXPECT_TRUE(pictureIn({}, screen).isNull());
}

TEST_F(PictureImage, a_truncated_file_is_no_picture_or_a_partial_one_but_never_a_crash) {
    const QByteArray whole = readFile(save(striped({800, 450}, Qt::Vertical), "whole.png"));
    ASSERT_FALSE(whole.isEmpty());
    writeFile(path("part.png"), whole.first(whole.size() / 2));
    const QImage image = pictureIn(path("part.png"), screen);
    EXPECT_TRUE(image.isNull() || image.size() == screen);
}

TEST_F(PictureImage, a_pipe_is_not_waited_for) {
    const QString pipe = path("pipe.png");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_TRUE(pictureIn(pipe, screen).isNull());
}

TEST_F(PictureImage, the_name_does_not_decide_the_format) {
    QFile::rename(save(striped({800, 450}, Qt::Vertical), "real.png"), path("named.jpg"));
    EXPECT_FALSE(pictureIn(path("named.jpg"), screen).isNull());
}

TEST_F(PictureImage, a_picture_of_20000_pixels_is_shown_or_refused) {
    QImage huge(20'000, 10'000, QImage::Format_Grayscale8); // more than this format can take small
    huge.fill(200);
    const QString file = save(huge, "huge.png");
    huge = {};
    const QImage image = pictureIn(file, screen);
    EXPECT_TRUE(image.isNull() || image.size() == screen);
}

TEST_F(PictureImage, a_huge_photograph_is_decoded_small) {
    QImage huge(20'000, 5'000, QImage::Format_RGB32);
    huge.fill(QColor(200, 100, 50));
    const QString file = save(huge, "huge.jpg");
    huge = {};
    const QImage image = pictureIn(file, screen);
    ASSERT_EQ(image.size(), screen);
    EXPECT_TRUE(isAbout(image.pixelColor(800, 450),
                        QColor::fromRgb(int(200 * dimmed), int(100 * dimmed), int(50 * dimmed))));
}

TEST_F(PictureImage, a_ribbon_one_pixel_wide_fills_the_screen_too) {
    QImage ribbon(1, 20'000, QImage::Format_RGB32);
    ribbon.fill(Qt::red);
    const QImage image = pictureIn(save(ribbon, "ribbon.png"), screen);
    ASSERT_EQ(image.size(), screen);
    EXPECT_TRUE(isAbout(image.pixelColor(0, 0), dimRed));
}

} // namespace pavonel::test
