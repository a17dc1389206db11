#include "UI/Controls/Button.h"
#include "support/OpenSettings.h"
#include "support/windows.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

class FocusApps : public ::testing::Test {
protected:
    OpenSettings open;

    FocusApps() {
        open.platform.installed.applications = {{u"org.blender.Blender"_s, u"Blender"_s},
                                                {u"org.gimp.GIMP"_s, u"GNU Image Manipulation Program"_s},
                                                {u"writer"_s, u"Writer"_s}};
    }

    void show(const QStringList &apps = {}) {
        open.settings.deepFocusApps = apps;
        open.show(Page::pausing);
    }
    const QStringList &apps() { return open.settings.deepFocusApps.get(); }

    Button *button(const QString &name) { return open.widget<Button>(QAccessible::Button, name); }
    QLineEdit *field() { return open.widget<QLineEdit>(QAccessible::EditableText, u"or a bundle id"_s); }
    QLineEdit *search() { return open.widget<QLineEdit>(QAccessible::EditableText, u"Search"_s); }
    QAbstractButton *row(const QString &name) {
        return open.widget<QAbstractButton>(QAccessible::Button, name);
    }
    bool isChoosing() { return open.find(QAccessible::Dialog, u"Choose an application"_s) != nullptr; }

    void press(Button &control) {
        click(control);
        QApplication::processEvents();
        open.settle();
    }
    void choose() { press(*button(u"Choose app…"_s)); }

    void enter(QLineEdit &edit, const QString &text, int key = Qt::Key_Return) {
        edit.setText(text);
        Q_EMIT edit.textEdited(text);
        send(edit, key);
    }
    static void send(QWidget &target, int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

TEST_F(FocusApps, are_listed_by_name_or_else_by_identifier) {
    show({u"org.gimp.GIMP"_s, u"com.example.Unknown"_s});
    EXPECT_NE(button(u"Remove GNU Image Manipulation Program"_s), nullptr);
    EXPECT_NE(button(u"Remove com.example.Unknown"_s), nullptr);
    EXPECT_FALSE(open.texts().contains(u"None yet"_s));
}

TEST_F(FocusApps, are_removed_one_by_one) {
    show({u"org.gimp.GIMP"_s, u"writer"_s});
    press(*button(u"Remove GNU Image Manipulation Program"_s));
    EXPECT_EQ(apps(), QStringList{u"writer"_s});
    press(*button(u"Remove Writer"_s));
    EXPECT_EQ(apps(), QStringList());
    EXPECT_TRUE(open.texts().contains(u"None yet"_s));
}

TEST_F(FocusApps, that_are_there_twice_are_removed_one_at_a_time) {
    show({u"x"_s, u"y"_s, u"x"_s, QString()});
    EXPECT_FALSE(open.window()->grab().isNull());
    EXPECT_EQ(apps().size(), 4);
    press(*button(u"Remove y"_s));
    EXPECT_EQ(apps(), (QStringList{u"x"_s, u"x"_s, QString()}));
}

TEST_F(FocusApps, are_added_by_their_identifier) {
    show();
    enter(*field(), u" com.example.App "_s);
    EXPECT_EQ(apps(), QStringList{u"com.example.App"_s});
    EXPECT_EQ(field()->text(), QString());
    field()->setText(u"org.blender.Blender"_s);
    Q_EMIT field()->textEdited(field()->text());
    press(*button(u"Add the bundle id"_s));
    EXPECT_EQ(apps(), (QStringList{u"com.example.App"_s, u"org.blender.Blender"_s}));
    EXPECT_NE(button(u"Remove Blender"_s), nullptr);
}

TEST_F(FocusApps, are_not_added_twice_nor_without_an_identifier) {
    show({u"writer"_s});
    enter(*field(), u"writer"_s);
    enter(*field(), u"  "_s);
    enter(*field(), QString());
    EXPECT_EQ(apps(), QStringList{u"writer"_s});
}

TEST_F(FocusApps, are_chosen_from_those_that_are_installed) {
    show();
    EXPECT_FALSE(isChoosing());
    choose();
    ASSERT_TRUE(isChoosing());
    for (const QString &name : {u"Blender"_s, u"GNU Image Manipulation Program"_s, u"Writer"_s})
        EXPECT_NE(row(name), nullptr);
    EXPECT_EQ(row(u"Writer"_s)->accessibleDescription(), u"writer"_s);
    row(u"GNU Image Manipulation Program"_s)->click();
    EXPECT_EQ(apps(), QStringList{u"org.gimp.GIMP"_s});
    EXPECT_FALSE(isChoosing());
    choose();
    row(u"GNU Image Manipulation Program"_s)->click();
    EXPECT_EQ(apps(), QStringList{u"org.gimp.GIMP"_s}) << "it was there already";
}

TEST_F(FocusApps, are_searched_by_name_and_identifier) {
    show();
    choose();
    ASSERT_EQ(open.window()->focusWidget(), search()) << "one can type at once";
    enter(*search(), u"GIMP"_s, Qt::Key_End);
    EXPECT_NE(row(u"GNU Image Manipulation Program"_s), nullptr);
    EXPECT_EQ(row(u"Blender"_s), nullptr);
    enter(*search(), u"nobody has this"_s);
    EXPECT_TRUE(open.texts().contains(u"No application is called so"_s));
    EXPECT_TRUE(isChoosing()) << "there was nothing to take";
    enter(*search(), u"wri"_s);
    EXPECT_EQ(apps(), QStringList{u"writer"_s}) << "Return takes the first";
}

TEST_F(FocusApps, are_chosen_by_the_keyboard_alone) {
    show();
    choose();
    send(*search(), Qt::Key_Down);
    EXPECT_EQ(open.window()->focusWidget(), row(u"Blender"_s));
    send(*row(u"Blender"_s), Qt::Key_Down);
    send(*open.window()->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(apps(), QStringList{u"org.gimp.GIMP"_s});
}

TEST_F(FocusApps, keep_the_keyboard_on_the_sheet_while_one_chooses) {
    show();
    choose();
    const auto *sheet = open.widget<QWidget>(QAccessible::Dialog, u"Choose an application"_s);
    ASSERT_NE(sheet, nullptr);
    for (int times = 0; times < 12; ++times) {
        send(*open.window()->focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(sheet->isAncestorOf(open.window()->focusWidget()));
    }
}

TEST_F(FocusApps, are_chosen_in_the_middle_of_the_window) {
    show();
    choose();
    for (const int width : {800, 1200}) {
        open.window()->resize(width, 700);
        QApplication::processEvents();
        const QPoint middle = search()->mapTo(open.window(), search()->rect().center());
        EXPECT_NEAR(middle.x(), width / 2, 2);
    }
}

TEST_F(FocusApps, stay_as_they_are_when_one_chooses_none) {
    show({u"writer"_s});
    choose();
    send(*search(), Qt::Key_Escape);
    EXPECT_FALSE(isChoosing());
    choose();
    press(*button(u"Cancel"_s));
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(isChoosing());
    EXPECT_EQ(apps(), QStringList{u"writer"_s});
}

TEST_F(FocusApps, can_be_chosen_among_hundreds_without_making_them_all) {
    for (int index = 0; index < 500; ++index)
        open.platform.installed.applications.push_back(
            {u"app%1"_s.arg(index), u"Application %1"_s.arg(index)});
    show();
    choose();
    int rows = 0;
    for (const auto *button : childrenOf<QAbstractButton>(open.window()))
        rows += button->accessibleDescription().startsWith(u"app"_s); // its identifier
    EXPECT_GT(rows, 0);
    EXPECT_LT(rows, 60);
    enter(*search(), u"app499"_s);
    EXPECT_EQ(apps(), QStringList{u"app499"_s});
}

TEST_F(FocusApps, lose_the_sheet_with_the_page) {
    show();
    choose();
    open.show(Page::stats);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(isChoosing());
}

} // namespace pavonel::test
