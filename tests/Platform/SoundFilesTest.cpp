#include "support/ChildProcess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const auto shippedFolder = QStringLiteral(PAVONEL_SOURCE_DIR "/resources/sounds");

struct Sound {
    int rate = 0;
    std::vector<int> samples; ///< 16 bits, one channel.

    double seconds() const { return static_cast<double>(samples.size()) / rate; }
    int peak(std::size_t from, std::size_t to) const {
        int most = 0;
        for (std::size_t n = from; n < to; ++n)
            most = std::max(most, std::abs(samples[n]));
        return most;
    }
};

/// A WAV file with the plain header that every player knows.
Sound readSound(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QFile::ReadOnly)) << path.toStdString();
    const QByteArray content = file.readAll();
    EXPECT_TRUE(content.startsWith("RIFF") && content.sliced(8, 8) == "WAVEfmt ") << path.toStdString();
    const auto number16 = [&](qsizetype at) { return qFromLittleEndian<qint16>(content.constData() + at); };
    EXPECT_EQ(number16(20), 1) << "linear samples";
    EXPECT_EQ(number16(22), 1) << "one channel";
    EXPECT_EQ(number16(34), 16) << "bits a sample";
    Sound sound{qFromLittleEndian<qint32>(content.constData() + 24), {}};
    for (qsizetype at = 44; at + 1 < content.size(); at += 2)
        sound.samples.push_back(number16(at));
    return sound;
}

class ShippedSound : public testing::TestWithParam<const char *> {
protected:
    QString path = shippedFolder + u'/' + QString::fromLatin1(GetParam()) + QStringLiteral(".wav");
    Sound sound = readSound(path);
};

const char *const names[] = {"Basso", "Blow", "Bottle", "Frog", "Funk",   "Glass",     "Hero",
                             "Morse", "Ping", "Pop",    "Purr", "Sosumi", "Submarine", "Tink"};

} // namespace

TEST_P(ShippedSound, is_short_and_small) {
    EXPECT_GE(sound.seconds(), 0.3);
    EXPECT_LE(sound.seconds(), 1.6);
    EXPECT_LT(QFile(path).size(), 100'000);
}

TEST_P(ShippedSound, is_loud_enough_and_does_not_clip) {
    const int peak = sound.peak(0, sound.samples.size());
    EXPECT_GT(peak, 32767 / 5);
    EXPECT_LT(peak, 32767 * 3 / 4);
}

TEST_P(ShippedSound, begins_and_ends_in_silence) {
    const std::size_t count = sound.samples.size();
    EXPECT_LT(sound.peak(0, 3), 100);
    EXPECT_LT(sound.peak(count - 100, count), 100);
}

TEST_P(ShippedSound, has_no_jump_that_would_click) {
    int jump = 0;
    for (std::size_t n = 1; n < sound.samples.size(); ++n)
        jump = std::max(jump, std::abs(sound.samples[n] - sound.samples[n - 1]));
    EXPECT_LT(jump, 32767 / 2);
}

INSTANTIATE_TEST_SUITE_P(SoundFiles, ShippedSound, testing::ValuesIn(names),
                         [](const auto &sound) { return std::string(sound.param); });

TEST(SoundFiles, there_are_fourteen) {
    EXPECT_EQ(QDir(shippedFolder).entryList(QDir::Files).size(), 14);
}

TEST(SoundFiles, no_two_are_alike) {
    std::vector<std::vector<int>> all;
    for (const char *name : names)
        all.push_back(
            readSound(shippedFolder + u'/' + QString::fromLatin1(name) + QStringLiteral(".wav")).samples);
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

TEST(SoundFiles, the_script_makes_the_sounds_that_are_shipped) {
    const QTemporaryDir made;
    const auto script = QStringLiteral(PAVONEL_SOURCE_DIR "/packaging/make-sounds");
    ASSERT_EQ(ChildProcess::run(script, {made.path()}).status, 0);
    EXPECT_EQ(QDir(made.path()).entryList(QDir::Files), QDir(shippedFolder).entryList(QDir::Files));
    for (const QString &file : QDir(made.path()).entryList(QDir::Files)) {
        const Sound fresh = readSound(made.filePath(file));
        const Sound shipped = readSound(shippedFolder + u'/' + file);
        ASSERT_EQ(fresh.samples.size(), shipped.samples.size()) << file.toStdString();
        for (std::size_t n = 0; n < fresh.samples.size(); ++n) // another machine rounds in its own way
            ASSERT_NEAR(fresh.samples[n], shipped.samples[n], 2) << file.toStdString() << " at " << n;
    }
}

} // namespace pavonel::test
