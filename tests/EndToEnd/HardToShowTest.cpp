#include "EndToEnd/Desktop.h"

#include <QImage>
#include <QJsonArray>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Small in the file, 1.6 GB as an ordinary picture.
QString hugeImage(const QString &folder) {
    QImage image(20'000, 20'000, QImage::Format_Mono);
    image.fill(1);
    const QString path = folder + QStringLiteral("/huge.png");
    EXPECT_TRUE(image.save(path));
    return path;
}

QString tenThousandCharacters() {
    return QStringLiteral("Look up and breathe. ").repeated(500).left(10'000);
}

} // namespace

class HardToShow : public testing::Test {
protected:
    void expectABreakWith(const QString &key, const QJsonValue &value) {
        desktop.store(
            {{QStringLiteral("microInterval"), 2}, {QStringLiteral("microDuration"), 2}, {key, value}});
        desktop.startProgram();
        EXPECT_TRUE(desktop.waitForOverlays());
        EXPECT_TRUE(desktop.waitForNoOverlay());
        EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
        EXPECT_GE(desktop.statistics()[QStringLiteral("micro")].toInt(), 1);
    }

    Desktop desktop;
    QTemporaryDir folder;
};

TEST_F(HardToShow, a_folder_as_the_background) {
    expectABreakWith(QStringLiteral("customBackgroundPath"), folder.path());
}

TEST_F(HardToShow, a_background_of_20000_pixels) {
    expectABreakWith(QStringLiteral("customBackgroundPath"), hugeImage(folder.path()));
}

TEST_F(HardToShow, a_message_of_10000_characters) {
    expectABreakWith(QStringLiteral("messages"), QJsonArray{tenThousandCharacters()});
}

TEST_F(HardToShow, a_message_that_runs_from_right_to_left) {
    expectABreakWith(QStringLiteral("messages"),
                     QJsonArray{QStringLiteral("انظر من النافذة إلى أبعد شيء تراه، ثم خذ نفساً عميقاً.")});
}

TEST_F(HardToShow, a_message_of_emoji) {
    expectABreakWith(
        QStringLiteral("messages"),
        QJsonArray{QStringLiteral("🦚👩‍👩‍👧‍👦🏳️‍🌈👍🏽 breathe 🌿")});
}

} // namespace pavonel::test
