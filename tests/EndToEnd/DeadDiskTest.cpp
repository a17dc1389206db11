#include "EndToEnd/DeadDisk.h"

#include "EndToEnd/Desktop.h"
#include "support/InChild.h"
#include "support/files.h"

#include <QDir>
#include <QImage>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// A desktop whose break screen shows a green picture from a disk of its own.
class DeadDiskTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!mayMount())
            GTEST_SKIP() << "This machine does not let a test mount a disk.";
        QImage picture(640, 360, QImage::Format_RGB32);
        picture.fill(Qt::green);
        ASSERT_TRUE(picture.save(disk.file(QStringLiteral("picture.png"))));
    }

    void startWith(QJsonObject settings) {
        settings[QStringLiteral("customBackgroundPath")] = disk.path(QStringLiteral("picture.png"));
        desktop.store(settings);
        desktop.startProgram(disk.inFront());
    }

    bool showsPicture(int screen) {
        constexpr int dimmed = 255 * 55 / 100;
        const QPoint corner = Desktop::screen(screen).topLeft() + QPoint(40, 40);
        const QColor seen = desktop.server().colourAt(corner);
        return std::abs(seen.green() - dimmed) <= 1 && seen.red() <= 1 && seen.blue() <= 1;
    }

    bool showsPictureEverywhere() {
        return waitUntil([this] { return showsPicture(0) && showsPicture(1) && showsPicture(2); });
    }

    DeadDisk disk;
    Desktop desktop;
};

const QJsonObject longBreakSoon{{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}};

} // namespace

TEST_F(DeadDiskTest, a_picture_on_it_holds_up_no_break_and_no_end) {
    disk.die();
    startWith(longBreakSoon);
    ASSERT_TRUE(desktop.waitForOverlays());
    desktop.pressEscape();
    ASSERT_TRUE(desktop.waitForNoOverlay()) << "the program stands still";
    ASSERT_TRUE(desktop.waitForOverlays()) << "the next break did not come";

    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);

    EXPECT_GE(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
    EXPECT_GE(desktop.statistics()[QStringLiteral("skipped")].toInt(), 1);
}

TEST_F(DeadDiskTest, a_picture_shows_as_soon_as_its_disk_answers) {
    disk.die();
    startWith(longBreakSoon);
    ASSERT_TRUE(desktop.waitForOverlays());
    EXPECT_FALSE(showsPicture(0));
    disk.revive();
    EXPECT_TRUE(showsPictureEverywhere());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(DeadDiskTest, the_picture_is_ready_for_every_screen_before_the_break_that_a_heads_up_announced) {
    startWith({{QStringLiteral("microInterval"), 12},
               {QStringLiteral("microDuration"), 600},
               {QStringLiteral("preNotifySeconds"), 10}});
    ASSERT_TRUE(disk.waitForReader());
    EXPECT_TRUE(desktop.overlays().empty()) << "it was read for the break only";
    disk.die();
    ASSERT_TRUE(desktop.waitForOverlays());
    EXPECT_TRUE(showsPictureEverywhere());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

/// The store's own folder is that disk.
class DeadStore : public ::testing::Test {
protected:
    void SetUp() override {
        if (!mayMount())
            GTEST_SKIP() << "This machine does not let a test mount a disk.";
        desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
        ASSERT_TRUE(QFile::copy(desktop.storePath(), disk.file(QStringLiteral("defaults.json"))));
    }

    void skipABreakWithoutTheDisk() {
        desktop.startProgram(disk.inFront());
        ASSERT_TRUE(desktop.waitForOverlays());
        disk.die();
        desktop.pressEscape();
        ASSERT_TRUE(desktop.waitForNoOverlay()) << "the program stands still";
        ASSERT_TRUE(desktop.waitForOverlays()) << "the next break did not come";
    }

    Desktop desktop;
    DeadDisk disk{QFileInfo(desktop.storePath()).path()};
};

TEST_F(DeadStore, breaks_go_on_without_it_and_so_does_the_end) {
    skipABreakWithoutTheDisk();
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(DeadStore, what_could_not_be_saved_is_saved_when_it_answers_again) {
    skipABreakWithoutTheDisk();
    disk.revive();
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    const QByteArray stored = readFile(disk.file(QStringLiteral("defaults.json")));
    EXPECT_TRUE(stored.contains("stats.days")) << stored.toStdString();
}

TEST(DeadCache, breaks_come_where_the_icons_of_the_menu_bar_lie_on_it) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a disk.";
    Desktop desktop;
    const QString cache = desktop.environment().value(QStringLiteral("XDG_CACHE_HOME"));
    ASSERT_TRUE(QDir().mkpath(cache + QStringLiteral("/pavonel")));
    DeadDisk disk(cache + QStringLiteral("/pavonel"));
    disk.die();
    desktop.store({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 2}});
    desktop.startProgram(disk.inFront());
    EXPECT_TRUE(desktop.waitForOverlays());
    EXPECT_TRUE(desktop.waitForNoOverlay());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

} // namespace pavonel::test
