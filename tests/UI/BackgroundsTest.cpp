#include "UI/Backgrounds.h"

#include "UI/BackgroundImage.h"
#include "UI/Theme.h"
#include "support/FakePlatform.h"
#include "support/files.h"
#include "support/waitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr QSize smallScreen(640, 360);

class BackgroundsTest : public ::testing::Test {
protected:
    FakePlatform platform;
    Settings settings{platform.fakeDefaults, platform.loop};
    Backgrounds backgrounds{settings, platform.loop};
    QTemporaryDir folder;

    QString savePicture(const QColor &color = Qt::red) const {
        const QString path = folder.filePath(color.name().mid(1) + QStringLiteral(".png"));
        QImage picture(320, 180, QImage::Format_RGB32);
        picture.fill(color);
        EXPECT_TRUE(picture.save(path));
        return path;
    }

    static QImage theme(int style) { return gradientImage(Theme::gradient(style), smallScreen); }

    bool comesToShow(const QImage &wanted) {
        return waitUntil([&] {
            platform.loop.advance(0);
            return backgrounds.image(smallScreen) == wanted;
        });
    }
};

} // namespace

TEST_F(BackgroundsTest, a_background_style_of_minus_3_draws_night_and_one_of_99_plain_black) {
    settings.backgroundStyle = -3;
    EXPECT_EQ(backgrounds.image(smallScreen), theme(0));
    settings.backgroundStyle = 99;
    EXPECT_EQ(backgrounds.image(smallScreen), theme(5));
}

TEST_F(BackgroundsTest, windows_of_a_size_share_one_image_that_is_made_once) {
    const qint64 first = backgrounds.image(smallScreen).cacheKey();
    backgrounds.image({800, 600});
    EXPECT_EQ(backgrounds.image(smallScreen).cacheKey(), first);
}

TEST_F(BackgroundsTest, another_theme_is_drawn_as_soon_as_it_is_set) {
    EXPECT_EQ(backgrounds.image(smallScreen), theme(0));
    settings.backgroundStyle = 3;
    EXPECT_EQ(backgrounds.image(smallScreen), theme(3));
}

TEST_F(BackgroundsTest, the_users_picture_takes_the_place_of_the_theme) {
    settings.customBackgroundPath = savePicture();
    EXPECT_TRUE(comesToShow(pictureImage(readFile(settings.customBackgroundPath), smallScreen)));
}

TEST_F(BackgroundsTest, the_path_of_a_deleted_file_draws_the_theme) {
    settings.backgroundStyle = 2;
    settings.customBackgroundPath = savePicture();
    QFile::remove(settings.customBackgroundPath);
    EXPECT_EQ(backgrounds.image(smallScreen), theme(2));
    EXPECT_TRUE(comesToShow(theme(2)));
    EXPECT_FALSE(settings.customBackgroundPath->isEmpty()) << "the setting stays as it is";
}

TEST_F(BackgroundsTest, a_folder_draws_the_theme) {
    settings.customBackgroundPath = folder.path();
    EXPECT_EQ(backgrounds.image(smallScreen), theme(0));
}

TEST_F(BackgroundsTest, clearing_the_path_brings_the_theme_back) {
    settings.customBackgroundPath = savePicture();
    EXPECT_TRUE(comesToShow(pictureImage(readFile(settings.customBackgroundPath), smallScreen)));
    settings.customBackgroundPath = QString();
    EXPECT_EQ(backgrounds.image(smallScreen), theme(0));
}

TEST_F(BackgroundsTest, a_picture_that_comes_late_does_not_replace_a_newer_choice) {
    settings.customBackgroundPath = savePicture(Qt::red);
    backgrounds.image(smallScreen);
    settings.customBackgroundPath = savePicture(Qt::blue);
    EXPECT_TRUE(comesToShow(pictureImage(readFile(settings.customBackgroundPath), smallScreen)));
    platform.loop.advance(1);
    EXPECT_EQ(backgrounds.image(smallScreen),
              pictureImage(readFile(settings.customBackgroundPath), smallScreen));
}

TEST_F(BackgroundsTest, going_while_a_picture_loads_is_harmless) {
    settings.customBackgroundPath = savePicture();
    {
        Backgrounds passing(settings, platform.loop);
        passing.image({4000, 3000});
    }
    platform.loop.advance(1);
}

TEST_F(BackgroundsTest, pictures_of_all_sizes_come_together_from_one_reading) {
    settings.customBackgroundPath = savePicture();
    const QByteArray file = readFile(settings.customBackgroundPath);
    int loadings = 0;
    backgrounds.onLoaded = [&] { ++loadings; };
    backgrounds.prepare({smallScreen, {800, 600}, smallScreen});
    ASSERT_TRUE(waitUntil([&] {
        platform.loop.advance(0);
        return loadings > 0;
    }));
    EXPECT_EQ(backgrounds.image(smallScreen), pictureImage(file, smallScreen));
    EXPECT_EQ(backgrounds.image({800, 600}), pictureImage(file, {800, 600}));
    platform.loop.advance(1);
    EXPECT_EQ(loadings, 1);
}

TEST_F(BackgroundsTest, nothing_is_kept_once_cleared) {
    const qint64 first = backgrounds.image(smallScreen).cacheKey();
    backgrounds.clear();
    EXPECT_NE(backgrounds.image(smallScreen).cacheKey(), first);
}

} // namespace pavonel::test
