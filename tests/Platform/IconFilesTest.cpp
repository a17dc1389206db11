#include "Platform/Linux/Tray/IconFiles.h"

#include "Platform/Qt/QtMainLoop.h"
#include "support/SlowDisk.h"
#include "support/ToolFixture.h"

namespace pavonel::test {

namespace {

std::vector<QImage> icon(const QColor &colour) {
    QImage image(18, 18, QImage::Format_ARGB32_Premultiplied);
    image.fill(colour);
    return {image};
}

class IconFilesTest : public ToolFixture {
protected:
    QString nameOf(const QColor &colour) {
        return files_.nameFor(QStringLiteral("pause.fill"), icon(colour));
    }

    QStringList told;

private:
    QtMainLoop loop_;
    IconFiles files_{path(QStringLiteral("cache/menubar")), loop_,
                     [this](const QString &name) { told += name; }};
};

} // namespace

TEST_F(IconFilesTest, an_icon_has_its_name_once_it_is_written) {
    EXPECT_EQ(nameOf(Qt::black), QString());
    ASSERT_TRUE(waitUntil([this] { return told.size() == 1; }));
    EXPECT_TRUE(QImage(path(QStringLiteral("cache/menubar/%1.png").arg(told[0]))).pixelColor(9, 9) ==
                Qt::black);
    EXPECT_EQ(nameOf(Qt::black), told[0]);
}

TEST_F(IconFilesTest, while_the_disk_takes_its_time_nobody_else_does_and_the_last_icon_counts) {
    SlowDisk disk;
    disk.hold();
    EXPECT_EQ(nameOf(Qt::black), QString());
    ASSERT_TRUE(disk.waitForWriter());
    EXPECT_EQ(nameOf(Qt::white), QString());
    disk.release();
    ASSERT_TRUE(waitUntil([this] { return !told.isEmpty(); }));
    EXPECT_EQ(nameOf(Qt::white), told[0]);
    EXPECT_EQ(told.size(), 1);
}

TEST_F(IconFilesTest, one_that_cannot_be_written_has_no_name_until_it_can) {
    write(QStringLiteral("cache"), "in the way");
    EXPECT_EQ(nameOf(Qt::black), QString());
    EXPECT_FALSE(waitUntil([this] { return !told.isEmpty(); }, 300));
    QFile::remove(path(QStringLiteral("cache")));
    EXPECT_EQ(nameOf(Qt::black), QString());
    EXPECT_TRUE(waitUntil([this] { return told.size() == 1; }));
}

} // namespace pavonel::test
