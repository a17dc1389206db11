#include "Core/CalendarText.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"
#include "support/OpenSettings.h"
#include "support/windows.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

class PlannedPage : public ::testing::Test {
protected:
    OpenSettings open;

    const PlannedBreaks &breaks() const { return open.settings.plannedBreaks; }

    void show(const PlannedBreaks &planned) {
        open.settings.plannedBreaks = planned;
        open.show(Page::planned);
    }

    template <class Control> Control *in(const QString &row, QAccessible::Role role, const QString &name) {
        return open.widget<Control>(role, name, row);
    }

    static PlannedBreak named(const QString &label) {
        PlannedBreak planned;
        planned.label = label;
        return planned;
    }

    QLineEdit *labelOf(const QString &row) {
        return in<QLineEdit>(row, QAccessible::EditableText, u"Label"_s);
    }

    std::vector<PlannedRow *> rows() const {
        std::vector<PlannedRow *> found;
        for (QWidget *widget : open.window()->findChildren<QWidget *>()) {
            if (auto *row = dynamic_cast<PlannedRow *>(widget); row && row->isVisible())
                found.push_back(row);
        }
        return found;
    }

    static void type(QLineEdit &field, const QString &text) {
        for (const QChar character : text) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
            QApplication::sendEvent(&field, &press);
        }
    }
};

} // namespace

TEST_F(PlannedPage, adds_a_break_with_the_defaults_of_a_record_behind_the_others) {
    show({named(u"Tea"_s)});
    auto *add = open.widget<Button>(QAccessible::Button, u"Add planned break"_s);
    ASSERT_NE(add, nullptr);
    click(*add);
    QApplication::processEvents();
    open.settle();
    ASSERT_EQ(breaks().size(), 2U);
    PlannedBreak expected;
    expected.id = breaks()[1].id;
    EXPECT_EQ(breaks()[1], expected);
    EXPECT_EQ(breaks()[1].label, u"Lunch"_s);
    EXPECT_EQ(breaks()[1].duration, 1800);
    EXPECT_NE(labelOf(u"Lunch"_s), nullptr) << "it can be edited at once";
}

TEST_F(PlannedPage, counts_the_active_ones) {
    PlannedBreak off;
    off.enabled = false;
    show({named(u"a"_s), off, named(u"b"_s)});
    EXPECT_TRUE(open.texts().contains(u"2 active"_s));
    EXPECT_FALSE(open.texts().contains(u"No planned breaks yet"_s));
}

TEST_F(PlannedPage, writes_every_letter_of_a_label_at_once_and_keeps_the_keyboard) {
    show({named(u"Tea"_s), named(u"Walk"_s)});
    QLineEdit *field = labelOf(u"Tea"_s);
    ASSERT_NE(field, nullptr);
    field->setFocus();
    field->end(false);
    type(*field, u" ti"_s);
    EXPECT_EQ(breaks()[0].label, u"Tea ti"_s);
    open.settle();
    field->setCursorPosition(1);
    type(*field, u"h"_s);
    open.settle();
    EXPECT_EQ(breaks()[0].label, u"Thea ti"_s);
    EXPECT_EQ(field->cursorPosition(), 2) << "it stays where one types";
    EXPECT_EQ(open.window()->focusWidget(), field);
    EXPECT_EQ(breaks()[1].label, u"Walk"_s);
    EXPECT_NE(open.find(QAccessible::Button, u"Remove Thea ti"_s), nullptr);
}

TEST_F(PlannedPage, writes_the_time_that_is_picked) {
    show({named(u"Tea"_s)});
    auto *hour = in<PopUpButton>(u"Tea"_s, QAccessible::ComboBox, u"Hour"_s);
    auto *minute = in<PopUpButton>(u"Tea"_s, QAccessible::ComboBox, u"Minute"_s);
    ASSERT_TRUE(hour && minute);
    EXPECT_EQ(hour->choice(), hourText(12));
    EXPECT_EQ(minute->choice(), u"30"_s);
    EXPECT_EQ(hour->count(), 24);
    EXPECT_EQ(minute->count(), 60);
    choose(*hour, hourText(9));
    choose(*minute, u"05"_s);
    EXPECT_EQ(breaks()[0].hour, 9);
    EXPECT_EQ(breaks()[0].minute, 5);
}

TEST_F(PlannedPage, the_tab_key_leads_on_also_after_a_list_was_opened) {
    show({named(u"Tea"_s)});
    auto *hour = in<PopUpButton>(u"Tea"_s, QAccessible::ComboBox, u"Hour"_s);
    choose(*hour, hourText(9));
    open.settings.plannedBreaks = PlannedBreaks{breaks()[0], named(u"Walk"_s)};
    open.settle();
    const QWidget *next = hour->nextInFocusChain();
    while (!(next->focusPolicy() & Qt::TabFocus))
        next = next->nextInFocusChain();
    EXPECT_EQ(next->accessibleName(), u"Minute"_s);
}

TEST_F(PlannedPage, writes_the_weekdays_by_the_numbers_of_the_record) {
    show({named(u"Tea"_s)});
    const std::vector<QString> names{u"Sunday"_s,   u"Monday"_s, u"Tuesday"_s, u"Wednesday"_s,
                                     u"Thursday"_s, u"Friday"_s, u"Saturday"_s};
    for (int weekday = 1; weekday <= 7; ++weekday) {
        auto *toggle =
            in<Button>(u"Tea"_s, QAccessible::CheckBox, names[static_cast<std::size_t>(weekday - 1)]);
        ASSERT_NE(toggle, nullptr) << weekday;
        const bool before = breaks()[0].weekdays.contains(weekday);
        EXPECT_EQ(toggle->isChecked(), before);
        toggle->click();
        EXPECT_EQ(breaks()[0].weekdays.contains(weekday), !before);
    }
    EXPECT_EQ(breaks()[0].weekdays, (std::set<int>{1, 7}));
}

TEST_F(PlannedPage, a_break_may_have_no_weekday_at_all) {
    PlannedBreak planned = named(u"Tea"_s);
    planned.weekdays = {2};
    show({planned});
    in<Button>(u"Tea"_s, QAccessible::CheckBox, u"Monday"_s)->click();
    EXPECT_TRUE(breaks()[0].weekdays.empty());
}

TEST_F(PlannedPage, writes_the_length_and_the_switch) {
    show({named(u"Tea"_s)});
    auto *duration = in<Stepper>(u"Tea"_s, QAccessible::SpinBox, u"Duration"_s);
    ASSERT_NE(duration, nullptr);
    duration->stepBy(1);
    EXPECT_EQ(breaks()[0].duration, 2100);
    duration->moveTo(1e9);
    EXPECT_EQ(breaks()[0].duration, 14400);
    in<Switch>(u"Tea"_s, QAccessible::CheckBox, u"Enabled"_s)->click();
    EXPECT_FALSE(breaks()[0].enabled);
    open.settle();
    EXPECT_TRUE(open.texts().contains(u"0 active"_s));
}

TEST_F(PlannedPage, removes_the_one_that_is_meant_and_leaves_the_others_as_they_are) {
    const PlannedBreaks three{named(u"a"_s), named(u"b"_s), named(u"c"_s)};
    show(three);
    click(*open.widget<Button>(QAccessible::Button, u"Remove b"_s));
    QApplication::processEvents();
    open.settle();
    EXPECT_EQ(breaks(), (PlannedBreaks{three[0], three[2]}));
    EXPECT_EQ(labelOf(u"b"_s), nullptr);
}

TEST_F(PlannedPage, edits_keep_the_order_and_the_identities) {
    const PlannedBreaks three{named(u"a"_s), named(u"b"_s), named(u"c"_s)};
    show(three);
    in<Switch>(u"b"_s, QAccessible::CheckBox, u"Enabled"_s)->click();
    in<Stepper>(u"a"_s, QAccessible::SpinBox, u"Duration"_s)->stepBy(-1);
    for (std::size_t index = 0; index < 3; ++index)
        EXPECT_EQ(breaks()[index].id, three[index].id);
    EXPECT_EQ(breaks()[2], three[2]);
}

TEST_F(PlannedPage, tells_records_apart_that_a_damaged_store_gave_the_same_identity) {
    PlannedBreak one = named(u"a"_s);
    PlannedBreak twin = one;
    twin.label = u"b"_s;
    show({one, twin});
    in<Switch>(u"b"_s, QAccessible::CheckBox, u"Enabled"_s)->click();
    EXPECT_TRUE(breaks()[0].enabled);
    EXPECT_FALSE(breaks()[1].enabled);
    click(*open.widget<Button>(QAccessible::Button, u"Remove a"_s));
    QApplication::processEvents();
    ASSERT_EQ(breaks().size(), 1U);
    EXPECT_EQ(breaks()[0].label, u"b"_s);
}

TEST_F(PlannedPage, shows_a_record_that_no_control_could_have_made_and_leaves_it_alone) {
    PlannedBreak odd = named(u"odd"_s);
    odd.hour = 99;
    odd.minute = -7;
    odd.duration = 1e300;
    odd.weekdays = {0, 9};
    show({odd});
    EXPECT_EQ(in<PopUpButton>(u"odd"_s, QAccessible::ComboBox, u"Hour"_s)->choice(), u"99"_s);
    EXPECT_FALSE(open.window()->grab().isNull());
    EXPECT_EQ(breaks()[0], odd);
    in<Button>(u"odd"_s, QAccessible::CheckBox, u"Monday"_s)->click();
    EXPECT_EQ(breaks()[0].weekdays, (std::set<int>{0, 2, 9}));
}

TEST_F(PlannedPage, takes_labels_of_any_kind) {
    for (const QString &label : {u"🫖 tea"_s, u"شاي"_s, QString(10000, u'x'), u"two\nlines"_s, QString()}) {
        show({named(label)});
        EXPECT_FALSE(open.window()->grab().isNull());
        EXPECT_EQ(breaks()[0].label, label) << "showing it changed it";
        QLineEdit *field = rows().front()->findChild<QLineEdit *>();
        ASSERT_NE(field, nullptr);
        field->end(false);
        type(*field, u"!"_s);
        EXPECT_EQ(breaks()[0].label, label + u'!');
    }
}

TEST_F(PlannedPage, follows_changes_from_elsewhere) {
    show({named(u"Tea"_s)});
    PlannedBreak changed = breaks()[0];
    changed.label = u"Walk"_s;
    changed.hour = 7;
    changed.weekdays = {7};
    open.settings.plannedBreaks = PlannedBreaks{changed};
    open.settle();
    EXPECT_EQ(labelOf(u"Walk"_s)->text(), u"Walk"_s);
    EXPECT_EQ(in<PopUpButton>(u"Walk"_s, QAccessible::ComboBox, u"Hour"_s)->choice(), hourText(7));
    EXPECT_TRUE(in<Button>(u"Walk"_s, QAccessible::CheckBox, u"Saturday"_s)->isChecked());
}

TEST_F(PlannedPage, of_hundreds_only_those_near_the_visible_ones_have_controls) {
    show(PlannedBreaks(500));
    EXPECT_LT(rows().size(), 30U);
    QWidget *list = rows().front()->parentWidget();
    while (!qobject_cast<QScrollArea *>(list))
        list = list->parentWidget();
    auto *bar = static_cast<QScrollArea *>(list)->verticalScrollBar();
    bar->setValue(bar->maximum());
    const auto made = rows();
    const auto *last = *std::ranges::max_element(made, {}, [](const QWidget *row) { return row->y(); });
    EXPECT_TRUE(last->isVisible());
    EXPECT_EQ(last->y(), 499 * last->height());
}

/// With text of this many times the ordinary size.
class PlannedRowAt : public PlannedPage, public ::testing::WithParamInterface<double> {
protected:
    PlannedRowAt() {
        QFont font = ordinary_;
        font.setPixelSize(qRound(15 * GetParam()));
        QApplication::setFont(font);
    }
    ~PlannedRowAt() override { QApplication::setFont(ordinary_); }

    static std::vector<QWidget *> controlsIn(const QWidget &row) {
        std::vector<QWidget *> controls;
        for (QWidget *widget : childrenOf<QWidget>(&row)) {
            if (widget->focusPolicy() & Qt::TabFocus && widget->isVisible())
                controls.push_back(widget);
        }
        return controls;
    }

private:
    QFont ordinary_ = QApplication::font();
};

INSTANTIATE_TEST_SUITE_P(TextOf, PlannedRowAt, testing::Values(1.0, 2.5));

TEST_P(PlannedRowAt, any_width_shows_its_controls_whole_and_apart_from_each_other) {
    PlannedRow row({[] { return named(u"A walk around the lake"_s); }, [](const PlannedBreak &) {}}, [] {});
    row.show();
    const int least = row.minimumSizeHint().width();
    EXPECT_LE(least, visuals().length(320));
    for (const int width : {least, visuals().length(409), visuals().length(410), visuals().length(640)}) {
        row.resize(width, PlannedRow::heightAt(width));
        QApplication::processEvents();
        const auto controls = controlsIn(row);
        ASSERT_EQ(controls.size(), 13U); // label, hour, minute, switch, removal, seven days, length
        for (std::size_t one = 0; one < controls.size(); ++one) {
            const auto placeOf = [&row](const QWidget *control) {
                return QRect(control->mapTo(&row, QPoint()), control->size());
            };
            const QRect place = placeOf(controls[one]);
            const QString name = controls[one]->accessibleName();
            EXPECT_TRUE(row.rect().contains(place)) << width << ' ' << qPrintable(name);
            EXPECT_GE(place.width(),
                      name == u"Label"_s ? visuals().length(100) : controls[one]->sizeHint().width())
                << width << ' ' << qPrintable(name);
            for (std::size_t other = 0; other < one; ++other)
                EXPECT_FALSE(place.intersects(placeOf(controls[other])))
                    << width << ' ' << qPrintable(name) << ' ' << other;
        }
    }
}

TEST_F(PlannedPage, the_rows_have_room_in_the_smallest_window_and_nothing_scrolls_sideways) {
    show({named(u"Tea"_s), named(u"Walk"_s)});
    open.window()->setMinimumSize(1, 1);
    for (const int width : {560, 540, 900}) {
        open.window()->resize(width, 480);
        open.settle();
        QApplication::processEvents();
        const auto made = rows();
        ASSERT_EQ(made.size(), 2U);
        EXPECT_EQ(made[1]->y(), made[0]->height()) << width;
        EXPECT_EQ(made[0]->parentWidget()->height(), 2 * made[0]->height()) << "all of them are seen";
        EXPECT_EQ(made[0]->height(), PlannedRow::heightAt(made[0]->width()));
        for (const auto *area : childrenOf<QScrollArea>(open.window()))
            EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << width;
    }
}

} // namespace pavonel::test
