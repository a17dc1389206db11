#include "UI/MessageText.h"

#include "UI/Fonts.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr double widest = 620;
constexpr double plenty = 700;
constexpr double line = 34;

QFont font() {
    return fonts::ui(26, QFont::Light);
}

MessageText laidOut(const QString &text, double height = plenty) {
    return {text, font(), widest, height};
}

/// Where the text's own pixels are, on a canvas of 1000 points whose middle is the text's.
QRect inkOf(const MessageText &text) {
    QImage image(1000, 1000, QImage::Format_Grayscale8);
    image.fill(0);
    {
        QPainter painter(&image);
        painter.setPen(Qt::white);
        text.paint(painter, {500, 100});
    }
    QRect ink;
    for (int y = 0; y < 1000; ++y) {
        for (int x = 0; x < 1000; ++x) {
            if (qRed(image.pixel(x, y)) > 60)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

const QString twoLines = QStringLiteral("Look out the window — find the farthest thing you can see.");

} // namespace

TEST(MessageText, an_empty_text_is_as_high_as_a_line) {
    EXPECT_EQ(laidOut({}).height(), line);
    EXPECT_TRUE(inkOf(laidOut({})).isEmpty());
}

TEST(MessageText, a_short_text_takes_one_line) {
    EXPECT_EQ(laidOut(QStringLiteral("Blink slowly.")).lineCount(), 1);
}

TEST(MessageText, a_text_wider_than_620_wraps) {
    EXPECT_GT(QFontMetricsF(font()).horizontalAdvance(twoLines), widest);
    EXPECT_EQ(laidOut(twoLines).lineCount(), 2);
    EXPECT_EQ(laidOut(twoLines).height(), 2 * line);
    EXPECT_LE(inkOf(laidOut(twoLines)).width(), widest);
}

TEST(MessageText, lines_are_of_about_equal_length) {
    EXPECT_LT(inkOf(laidOut(twoLines)).width(), 400) << "not one long line and a lost word";
}

TEST(MessageText, a_word_that_fits_is_not_split_for_the_sake_of_equal_lines) {
    const QString longest = QStringLiteral("Rindfleischetikettierungsgesetz,");
    const double needed = QFontMetricsF(font()).horizontalAdvance(longest);
    for (const QString &text : {longest + QStringLiteral(" not looked at, rests your eyes."),
                                QStringLiteral("Rest your eyes from the ") + longest,
                                longest + QStringLiteral(" breathe; ") + longest}) {
        const MessageText message = laidOut(text);
        EXPECT_EQ(message.lineCount(), 2) << text.toStdString();
        EXPECT_GE(message.width(), needed) << text.toStdString();
    }
}

TEST(MessageText, beside_a_word_that_must_be_split_no_other_is) {
    const QString longest = QStringLiteral("Rindfleischetikettierungsgesetz");
    const MessageText text = laidOut(QString(60, u'm') + u' ' + longest);
    EXPECT_GE(text.width(), QFontMetricsF(font()).horizontalAdvance(longest));
}

TEST(MessageText, lines_are_centred) {
    const QRect ink = inkOf(laidOut(twoLines));
    EXPECT_NEAR(ink.center().x(), 500, 2);
}

TEST(MessageText, a_break_of_the_users_own_is_kept) {
    EXPECT_EQ(laidOut(QStringLiteral("one\ntwo\nthree")).lineCount(), 3);
}

TEST(MessageText, a_text_of_10000_characters_is_cut_at_the_height_that_is_there) {
    const MessageText text = laidOut(QStringLiteral("Look away. ").repeated(909), 10 * line + 5);
    EXPECT_EQ(text.lineCount(), 10);
    EXPECT_TRUE(text.isCut());
    const QRect ink = inkOf(text);
    EXPECT_LE(ink.width(), widest);
    EXPECT_LE(ink.bottom(), 100 + 10 * line);
    EXPECT_GT(ink.bottom(), 100 + 9 * line) << "the last line is there too";
}

TEST(MessageText, one_word_of_10000_letters_is_broken_anywhere) {
    const MessageText text = laidOut(QString(10'000, u'm'), 5 * line);
    EXPECT_EQ(text.lineCount(), 5);
    EXPECT_LE(inkOf(text).width(), widest);
}

TEST(MessageText, there_is_always_room_for_a_line) {
    EXPECT_EQ(laidOut(twoLines, 0).lineCount(), 1);
    EXPECT_EQ(laidOut(twoLines, -10).lineCount(), 1);
}

TEST(MessageText, right_to_left_text_and_emoji_are_laid_out) {
    const QString hebrew =
        QString::fromUtf8("הסתכלו מבעד לחלון אל הדבר הרחוק ביותר שאפשר לראות, ואז עוד קצת");
    EXPECT_EQ(laidOut(hebrew).lineCount(), 2);
    EXPECT_NEAR(inkOf(laidOut(hebrew)).center().x(), 500, 3);
    const MessageText emoji =
        laidOut(QString::fromUtf8("👀 Look up 🌳🌳🌳 — and 👩‍👩‍👧‍👦 breathe"));
    EXPECT_EQ(emoji.lineCount(), 1);
    EXPECT_EQ(emoji.height(), line) << "other fonts do not move the lines";
}

TEST(MessageText, mixed_text_is_cut_without_harm) {
    QString mixed;
    for (int i = 0; i < 1000; ++i)
        mixed += QString::fromUtf8("שלום 👩‍👩‍👧‍👦 hello\n");
    EXPECT_EQ(laidOut(mixed, 3 * line).lineCount(), 3);
    EXPECT_LE(inkOf(laidOut(mixed, 3 * line)).width(), widest);
}

TEST(MessageText, no_width_at_all_is_no_harm) {
    EXPECT_GE(MessageText(twoLines, font(), 0, 3 * line).lineCount(), 1);
}

} // namespace pavonel::test
