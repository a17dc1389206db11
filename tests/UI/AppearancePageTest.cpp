#include "UI/Controls/Button.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Theme.h"
#include "support/OpenSettings.h"
#include "support/files.h"
#include "support/waitUntil.h"
#include "support/windows.h"

#include <QDir>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

class AppearancePage : public ::testing::Test {
protected:
    OpenSettings open;
    QTemporaryDir folder;

    void show() { open.show(Page::appearance); }

    QAbstractButton *style(const QString &name) {
        return open.widget<QAbstractButton>(QAccessible::RadioButton, name, u"Break screen"_s);
    }
    Button *button(const QString &name, const QString &card = u"Break screen"_s) {
        return open.widget<Button>(QAccessible::Button, name, card);
    }
    PopUpButton *picker(const QString &name) {
        return open.widget<PopUpButton>(QAccessible::ComboBox, name, u"Sounds"_s);
    }
    QLineEdit *messageField() {
        return open.widget<QLineEdit>(QAccessible::EditableText, u"Add a message"_s);
    }
    bool shows(const QString &text) { return open.texts().contains(text); }
    bool soonShows(const QString &text) {
        return waitUntil([&] {
            open.platform.loop.advance(0);
            return shows(text);
        });
    }

    QString picture(const QString &name, const QColor &colour) {
        QImage image(64, 40, QImage::Format_RGB32);
        image.fill(colour);
        const QString path = folder.filePath(name);
        image.save(path);
        return path;
    }

    static void pressReturn(QWidget &target) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s);
        QApplication::sendEvent(&target, &press);
    }
};

} // namespace

TEST_F(AppearancePage, offers_every_style_by_its_name_and_writes_the_choice) {
    show();
    for (const Background &theme : Theme::gradients()) {
        QAbstractButton *tile = style(theme.name);
        ASSERT_NE(tile, nullptr) << qPrintable(theme.name);
        tile->click();
        EXPECT_EQ(open.settings.backgroundStyle, theme.id);
        EXPECT_TRUE(tile->isChecked());
    }
    EXPECT_FALSE(style(u"Night"_s)->isChecked()) << "one at a time";
}

TEST_F(AppearancePage, follows_the_style_and_shows_one_off_the_list_as_the_break_screen_does) {
    show();
    for (const auto &[stored, name] :
         {std::pair(2, u"Forest"_s), std::pair(-3, u"Night"_s), std::pair(99, u"Plain black"_s)}) {
        open.settings.backgroundStyle = stored;
        open.settle();
        EXPECT_TRUE(style(name)->isChecked()) << stored;
        EXPECT_EQ(open.settings.backgroundStyle, stored) << "showing it changed it";
    }
}

TEST_F(AppearancePage, chooses_a_style_by_the_keyboard) {
    show();
    style(u"Night"_s)->setFocus(Qt::TabFocusReason);
    QKeyEvent right(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
    QApplication::sendEvent(style(u"Night"_s), &right);
    EXPECT_EQ(open.settings.backgroundStyle, 1);
}

TEST_F(AppearancePage, shows_which_style_has_the_keyboard_also_on_the_chosen_one) {
    show();
    const QImage chosen = style(u"Night"_s)->grab().toImage();
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(style(u"Night"_s), &focus);
    EXPECT_NE(style(u"Night"_s)->grab().toImage(), chosen);
}

TEST_F(AppearancePage, previews_the_break_screen_with_the_style) {
    show();
    auto *preview = open.widget<QWidget>(QAccessible::Graphic, u"Preview of the break screen"_s);
    ASSERT_NE(preview, nullptr);
    const QImage night = preview->grab().toImage();
    style(u"Sand"_s)->click();
    open.settle();
    const QImage sand = preview->grab().toImage();
    EXPECT_NE(night, sand);
    EXPECT_GT(sand.pixelColor(sand.width() - 20, sand.height() - 10).red(),
              sand.pixelColor(sand.width() - 20, sand.height() - 10).blue());
}

TEST_F(AppearancePage, shows_the_image_that_is_chosen_and_removes_it) {
    open.settings.customBackgroundPath = picture(u"meadow.png"_s, Qt::green);
    show();
    EXPECT_TRUE(shows(u"meadow.png"_s));
    EXPECT_TRUE(soonShows(u"Shown in place of the style."_s));
    auto *preview = open.widget<QWidget>(QAccessible::Graphic, u"Preview of the break screen"_s);
    EXPECT_TRUE(waitUntil([&] {
        open.platform.loop.advance(0);
        const QColor corner = preview->grab().toImage().pixelColor(20, 10);
        return corner.green() > 100 && corner.red() < 10;
    })) << "dimmed, as on the break screen";
    click(*button(u"Remove"_s));
    EXPECT_EQ(open.settings.customBackgroundPath, QString());
    open.settle();
    EXPECT_TRUE(shows(u"No custom image"_s));
    EXPECT_EQ(button(u"Remove"_s), nullptr);
}

TEST_F(AppearancePage, says_of_an_image_that_is_gone_or_none_that_the_style_is_shown) {
    writeFile(folder.filePath(u"broken.png"_s), "no picture");
    for (const QString &name : {u"broken.png"_s, u"gone.png"_s}) {
        open.settings.customBackgroundPath = folder.filePath(name);
        show();
        open.settle();
        EXPECT_TRUE(soonShows(u"It cannot be read, so the style is shown."_s));
        EXPECT_TRUE(shows(name));
        EXPECT_NE(button(u"Remove"_s), nullptr);
        EXPECT_EQ(open.settings.customBackgroundPath, folder.filePath(name)) << "the setting stays";
    }
}

TEST_F(AppearancePage, takes_the_image_that_is_picked) {
    const QString path = picture(u"sea.png"_s, Qt::blue);
    open.settings.customBackgroundPath = picture(u"old.png"_s, Qt::red); // the dialog opens beside it
    show();
    ASSERT_TRUE(soonShows(u"Shown in place of the style."_s));
    click(*button(u"Choose image…"_s));
    auto *dialog = open.window()->findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->directory(), QDir(folder.path()));
    Q_EMIT dialog->fileSelected(path);
    EXPECT_EQ(open.settings.customBackgroundPath, path);
    dialog->close();
    EXPECT_TRUE(soonShows(u"sea.png"_s));
}

TEST_F(AppearancePage, offers_none_and_every_sound_of_the_system_and_lets_one_hear_the_choice) {
    show();
    for (const auto &[label, setting] : {std::pair(u"Break starts"_s, &Settings::startSound),
                                         std::pair(u"Break ends"_s, &Settings::endSound)}) {
        PopUpButton *sound = picker(label);
        ASSERT_NE(sound, nullptr);
        EXPECT_EQ(sound->choice(), (open.settings.*setting).get());
        EXPECT_EQ(choicesOf(*sound), (QStringList{u"None"_s, u"Glass"_s, u"Submarine"_s}));
        open.platform.fakeSounds.played.clear();
        choose(*sound, u"Glass"_s);
        EXPECT_EQ((open.settings.*setting).get(), u"Glass"_s);
        EXPECT_EQ(open.platform.fakeSounds.played, QStringList{u"Glass"_s});
        click(*button(u"Listen to "_s + label, u"Sounds"_s));
        EXPECT_EQ(open.platform.fakeSounds.played, (QStringList{u"Glass"_s, u"Glass"_s}));
        choose(*sound, u"None"_s);
        EXPECT_EQ((open.settings.*setting).get(), u"None"_s);
        EXPECT_EQ(open.platform.fakeSounds.played.size(), 2);
        open.settle();
        EXPECT_FALSE(button(u"Listen to "_s + label, u"Sounds"_s)->isEnabled()) << "there is nothing to hear";
    }
}

TEST_F(AppearancePage, keeps_a_sound_that_this_system_does_not_have) {
    open.settings.startSound = u"Bell of another system"_s;
    show();
    EXPECT_EQ(picker(u"Break starts"_s)->choice(), u"Bell of another system"_s);
    EXPECT_EQ(open.settings.startSound, u"Bell of another system"_s);
}

TEST_F(AppearancePage, removes_the_message_that_is_meant) {
    open.settings.messages = QStringList{u"a"_s, u"b"_s, u"a"_s};
    show();
    click(*button(u"Remove b"_s, u"Break messages"_s));
    QApplication::processEvents();
    open.settle();
    EXPECT_EQ(open.settings.messages.get(), (QStringList{u"a"_s, u"a"_s}));
    open.settings.messages = QStringList{u"a"_s, u"c"_s};
    open.settle();
    click(*button(u"Remove a"_s, u"Break messages"_s));
    QApplication::processEvents();
    EXPECT_EQ(open.settings.messages.get(), QStringList{u"c"_s});
}

TEST_F(AppearancePage, adds_a_message_behind_the_others_by_return_and_by_its_button) {
    open.settings.messages = QStringList{u"a"_s};
    show();
    messageField()->setText(u"  Look up.  "_s);
    Q_EMIT messageField()->textEdited(messageField()->text());
    pressReturn(*messageField());
    EXPECT_EQ(open.settings.messages.get(), (QStringList{u"a"_s, u"Look up."_s}));
    EXPECT_EQ(messageField()->text(), QString()) << "ready for the next";
    messageField()->setText(u"a"_s);
    Q_EMIT messageField()->textEdited(messageField()->text());
    click(*button(u"Add the message"_s, u"Break messages"_s));
    EXPECT_EQ(open.settings.messages.get(), (QStringList{u"a"_s, u"Look up."_s, u"a"_s}));
    open.settle();
    EXPECT_NE(button(u"Remove Look up."_s, u"Break messages"_s), nullptr);
}

TEST_F(AppearancePage, does_not_add_a_message_of_blanks) {
    show();
    const QStringList before = open.settings.messages;
    EXPECT_FALSE(button(u"Add the message"_s, u"Break messages"_s)->isEnabled());
    messageField()->setText(u"   "_s);
    pressReturn(*messageField());
    EXPECT_EQ(open.settings.messages.get(), before);
}

TEST_F(AppearancePage, may_have_no_message_at_all) {
    open.settings.messages = QStringList{u"a"_s};
    show();
    click(*button(u"Remove a"_s, u"Break messages"_s));
    QApplication::processEvents();
    open.settle();
    EXPECT_EQ(open.settings.messages.get(), QStringList());
    EXPECT_FALSE(open.window()->grab().isNull());
}

TEST_F(AppearancePage, shows_messages_of_any_kind_and_hundreds_of_them) {
    QStringList many{u"🌳 trees"_s,    u"انظر بعيدا"_s, QString(10000, u'x'),
                     u"two\nlines"_s, QString(),       QString()};
    for (int index = 0; index < 600; ++index)
        many.append(u"Message %1"_s.arg(index));
    open.settings.messages = many;
    show();
    EXPECT_FALSE(open.window()->grab().isNull());
    EXPECT_EQ(open.settings.messages.get(), many);
    int rows = 0;
    for (QWidget *widget : open.window()->findChildren<QWidget *>())
        rows += dynamic_cast<ListRow *>(widget) != nullptr;
    EXPECT_LT(rows, 60) << "only those near the visible ones exist";
    click(*button(u"Remove two lines"_s, u"Break messages"_s));
    QApplication::processEvents();
    many.removeAt(3);
    EXPECT_EQ(open.settings.messages.get(), many);
}

} // namespace pavonel::test
