#include "UI/Controls/Button.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "support/FakePlatform.h"
#include "support/Styled.h"
#include "support/waitUntil.h"
#include "support/windows.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

struct SettingsControls : testing::Test {
    FakePlatform platform;
    Styled styled{platform};

    static void press(QWidget &target, int key, const QString &text = {}) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(&target, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QApplication::sendEvent(&target, &up);
    }
    static void mouse(QWidget &target, QEvent::Type type, QPointF where) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, where, target.mapToGlobal(where), Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
    /// By one notch, downwards.
    static void turnWheel(ScrollArea &area) {
        QWheelEvent event({10, 10}, area.mapToGlobal(QPointF(10, 10)), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(area.viewport(), &event);
    }
    static QAccessibleInterface *accessible(QWidget &widget) {
        return QAccessible::queryAccessibleInterface(&widget);
    }
};

/// From the right edge of what is drawn on the button to the button's own.
int airAtTheRight(PopUpButton &button) {
    button.resize(button.sizeHint());
    const QImage picture = button.grab().toImage();
    const QRect body = button.rect().adjusted(FocusRing::room, FocusRing::room, -FocusRing::room, 0);
    const QColor fill = picture.pixelColor(body.left() + 5, body.center().y());
    for (int air = 2; air < body.width(); ++air) { // within the outline
        for (int y = body.top() + 6; y < body.bottom() - 6 - FocusRing::room; ++y) {
            if (contrast(picture.pixelColor(body.right() - air, y), fill) > 2)
                return air;
        }
    }
    return 0;
}

struct SettingsStepper : SettingsControls {
    Stepper stepper{u"Every"_s, {60, 7200}, 60, [](double value) { return QString::number(value); }};
    std::vector<double> steps;

    SettingsStepper() {
        stepper.onStep = [this](double value) { steps.push_back(value); };
        stepper.setValue(1200);
        stepper.resize(stepper.sizeHint());
        stepper.show();
    }
    QPointF plus() const { return {stepper.width() - 16.0, stepper.height() / 2.0}; }
    QPointF minus() const { return {stepper.width() - 48.0, stepper.height() / 2.0}; }
    /// More than it takes until a held half steps again.
    static void letSomeTimePass() {
        QElapsedTimer passed;
        passed.start();
        EXPECT_TRUE(waitUntil([&] { return passed.elapsed() > 600; }));
    }
};

struct SettingsPopUp : SettingsControls {
    PopUpButton button{u"Break starts"_s, {u"None"_s, u"Glass"_s, u"Submarine"_s}};
    QStringList chosen;

    SettingsPopUp() {
        button.setChoice(u"Glass"_s);
        QObject::connect(&button, &PopUpButton::textActivated,
                         [this](const QString &choice) { chosen.append(choice); });
        button.resize(button.sizeHint());
        button.show();
    }
    ~SettingsPopUp() override {
        if (QWidget *list = QApplication::activePopupWidget())
            list->close();
    }
    QAbstractItemView &list() { return *button.view(); }
    QString lit() { return list().currentIndex().data().toString(); }
    QPoint middleOf(int row) { return list().visualRect(list().model()->index(row, 0)).center(); }
    void pointAt(QPoint where, QEvent::Type type, Qt::MouseButton held = Qt::NoButton) {
        QWidget &target = *list().viewport();
        QMouseEvent event(type, where, target.mapToGlobal(where), held, held, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
};

} // namespace

TEST_F(SettingsStepper, the_halves_step_down_and_up) {
    mouse(stepper, QEvent::MouseButtonPress, plus());
    mouse(stepper, QEvent::MouseButtonRelease, plus());
    mouse(stepper, QEvent::MouseButtonPress, minus());
    mouse(stepper, QEvent::MouseButtonRelease, minus());
    EXPECT_EQ(steps, (std::vector<double>{1260, 1200}));
}

TEST_F(SettingsStepper, a_held_half_steps_again_and_again_until_it_is_let_go) {
    mouse(stepper, QEvent::MouseButtonPress, plus());
    EXPECT_EQ(steps.size(), 1U);
    EXPECT_TRUE(waitUntil([this] { return steps.size() >= 5; }));
    mouse(stepper, QEvent::MouseButtonRelease, plus());
    const auto held = steps.size();
    letSomeTimePass();
    EXPECT_EQ(steps.size(), held);
}

TEST_F(SettingsStepper, a_held_half_stops_at_the_bound) {
    stepper.setValue(200);
    mouse(stepper, QEvent::MouseButtonPress, minus());
    EXPECT_TRUE(waitUntil([this] { return stepper.value() == 60; }));
    letSomeTimePass();
    EXPECT_EQ(steps, (std::vector<double>{140, 80, 60}));
}

TEST_F(SettingsStepper, hiding_it_ends_the_repetition) {
    mouse(stepper, QEvent::MouseButtonPress, plus());
    stepper.hide();
    letSomeTimePass();
    EXPECT_EQ(steps.size(), 1U);
}

TEST_F(SettingsStepper, arrow_keys_space_and_return_step) {
    for (const int key : {Qt::Key_Up, Qt::Key_Right, Qt::Key_Plus, Qt::Key_Space, Qt::Key_Return})
        press(stepper, key);
    EXPECT_EQ(stepper.value(), 1500);
    for (const int key : {Qt::Key_Down, Qt::Key_Left, Qt::Key_Minus})
        press(stepper, key);
    EXPECT_EQ(stepper.value(), 1320);
    press(stepper, Qt::Key_End);
    EXPECT_EQ(stepper.value(), 7200);
    press(stepper, Qt::Key_Home);
    EXPECT_EQ(stepper.value(), 60);
}

TEST_F(SettingsStepper, a_disabled_one_does_not_step) {
    stepper.setEnabled(false);
    stepper.stepBy(1);
    EXPECT_TRUE(steps.empty());
}

TEST_F(SettingsStepper, a_number_that_is_none_is_not_taken) {
    stepper.setValue(std::nan(""));
    stepper.moveTo(std::nan(""));
    EXPECT_EQ(stepper.value(), 1200);
    stepper.moveTo(1e300);
    EXPECT_EQ(stepper.value(), 7200);
}

TEST_F(SettingsStepper, lets_the_page_scroll_by_the_wheel) {
    QWheelEvent wheel({10, 10}, stepper.mapToGlobal(QPointF(10, 10)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&stepper, &wheel);
    EXPECT_FALSE(wheel.isAccepted());
    EXPECT_EQ(stepper.value(), 1200);
}

TEST_F(SettingsStepper, is_a_spin_box_with_a_value_to_assistive_technology) {
    QAccessibleInterface *box = accessible(stepper);
    EXPECT_EQ(box->role(), QAccessible::SpinBox);
    EXPECT_EQ(box->text(QAccessible::Name), u"Every"_s);
    EXPECT_EQ(box->text(QAccessible::Value), u"1200"_s);
    QAccessibleValueInterface *value = box->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toDouble(), 1200);
    EXPECT_EQ(value->minimumValue().toDouble(), 60);
    EXPECT_EQ(value->maximumValue().toDouble(), 7200);
    EXPECT_EQ(value->minimumStepSize().toDouble(), 60);
    value->setCurrentValue(9000);
    EXPECT_EQ(steps, std::vector<double>{7200});
    value->setCurrentValue(7140);
    EXPECT_EQ(stepper.value(), 7140);
    EXPECT_EQ(box->textInterface()->text(0, 10), u"7140"_s);
}

TEST_F(SettingsControls, the_chevrons_of_a_pop_up_button_keep_their_distance_with_the_largest_text) {
    PopUpButton ordinary(u"Minute"_s, {u"00"_s});
    const int usual = airAtTheRight(ordinary);
    const QFont before = QApplication::font();
    QFont largest = before;
    largest.setPixelSize(38);
    QApplication::setFont(largest);
    PopUpButton button(u"Minute"_s, {u"00"_s});
    EXPECT_NEAR(airAtTheRight(button), usual, 1);
    QApplication::setFont(before);
}

TEST_F(SettingsControls, a_switch_acts_on_space_and_return_and_leaves_arrow_keys_to_the_page) {
    Switch one(u"Enabled"_s);
    one.ensurePolished();
    int clicks = 0;
    QObject::connect(&one, &Switch::toggled, [&] { ++clicks; });
    press(one, Qt::Key_Space);
    EXPECT_TRUE(one.isChecked());
    press(one, Qt::Key_Return);
    EXPECT_FALSE(one.isChecked());
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(&one, &down);
    EXPECT_FALSE(down.isAccepted());
    EXPECT_EQ(clicks, 2);
}

TEST_F(SettingsControls, the_knob_glides_for_a_click_and_not_for_what_comes_from_elsewhere) {
    Switch one(u"Enabled"_s);
    one.resize(one.sizeHint());
    const QImage off = one.grab().toImage();
    one.setOn(true);
    const QImage on = one.grab().toImage();
    EXPECT_NE(on, off);
    one.click();
    EXPECT_EQ(one.grab().toImage(), on) << "no time has passed";
    platform.loop.advance(0.08);
    const QImage between = one.grab().toImage();
    EXPECT_NE(between, on);
    EXPECT_NE(between, off);
    platform.loop.advance(1);
    EXPECT_EQ(one.grab().toImage(), off);
}

TEST_F(SettingsControls, with_reduced_motion_the_knob_is_there_at_once) {
    platform.colours.current.reducedMotion = true;
    Switch one(u"Enabled"_s);
    one.resize(one.sizeHint());
    const QImage off = one.grab().toImage();
    one.click();
    const QImage on = one.grab().toImage();
    EXPECT_NE(on, off);
    platform.loop.advance(1);
    EXPECT_EQ(one.grab().toImage(), on);
}

TEST_F(SettingsControls, the_ring_is_for_those_who_use_the_keyboard) {
    Button button(u"Quit Pavonel"_s);
    button.ensurePolished();
    const auto send = [&](QEvent::Type type, Qt::FocusReason reason) {
        QFocusEvent event(type, reason);
        QApplication::sendEvent(&button, &event);
        return FocusRing::isOn(button);
    };
    const QImage without = button.grab().toImage();
    EXPECT_FALSE(send(QEvent::FocusIn, Qt::MouseFocusReason));
    EXPECT_TRUE(send(QEvent::FocusIn, Qt::TabFocusReason));
    EXPECT_NE(button.grab().toImage(), without);
    EXPECT_FALSE(send(QEvent::FocusOut, Qt::ActiveWindowFocusReason));
    EXPECT_TRUE(send(QEvent::FocusIn, Qt::ActiveWindowFocusReason)) << "it comes back with the window";
    EXPECT_FALSE(send(QEvent::FocusOut, Qt::TabFocusReason));
    EXPECT_FALSE(send(QEvent::FocusIn, Qt::ActiveWindowFocusReason));
}

TEST_F(SettingsControls, a_button_acts_on_space_and_return) {
    Button button(u"Quit Pavonel"_s);
    button.ensurePolished();
    int clicks = 0;
    QObject::connect(&button, &Button::clicked, [&] { ++clicks; });
    press(button, Qt::Key_Space);
    press(button, Qt::Key_Return);
    press(button, Qt::Key_Enter);
    EXPECT_EQ(clicks, 3);
    EXPECT_EQ(accessible(button)->role(), QAccessible::Button);
    EXPECT_EQ(accessible(button)->text(QAccessible::Name), u"Quit Pavonel"_s);
}

TEST_F(SettingsPopUp, opens_a_list_of_its_choices_with_the_one_that_holds_marked) {
    press(button, Qt::Key_Space);
    ASSERT_TRUE(button.isListShown());
    EXPECT_EQ(list().model()->rowCount(), 3);
    EXPECT_EQ(list().model()->index(0, 0).data(), u"None"_s);
    EXPECT_EQ(lit(), u"Glass"_s);
    const QImage picture = list().viewport()->grab().toImage();
    const auto inks = [&](int row) {
        const QRect line = list().visualRect(list().model()->index(row, 0));
        QSet<QRgb> found; // where the tick is
        for (int x = line.left() + 9; x < line.left() + 19; ++x)
            for (int y = line.top() + 7; y < line.bottom() - 7; ++y)
                found.insert(picture.pixel(x, y));
        return found.size();
    };
    EXPECT_GT(inks(1), 1) << "it is ticked";
    EXPECT_EQ(inks(0), 1);
}

TEST_F(SettingsPopUp, a_click_chooses_and_closes) {
    button.showPopup();
    const QPoint submarine = middleOf(2);
    pointAt(submarine, QEvent::MouseMove);
    pointAt(submarine, QEvent::MouseButtonPress, Qt::LeftButton);
    pointAt(submarine, QEvent::MouseButtonRelease, Qt::LeftButton);
    EXPECT_EQ(chosen, QStringList{u"Submarine"_s});
    EXPECT_EQ(button.choice(), u"Submarine"_s);
    EXPECT_FALSE(button.isListShown());
}

TEST_F(SettingsPopUp, is_operated_by_keys_alone) {
    press(button, Qt::Key_Return);
    ASSERT_TRUE(button.isListShown());
    press(list(), Qt::Key_Home);
    press(list(), Qt::Key_Return);
    EXPECT_EQ(chosen, QStringList{u"None"_s});
    press(button, Qt::Key_Down);
    press(list(), Qt::Key_S, u"s"_s);
    press(list(), Qt::Key_Enter);
    EXPECT_EQ(chosen.back(), u"Submarine"_s);
}

TEST_F(SettingsPopUp, finds_a_choice_by_what_is_typed_in_one_go) {
    PopUpButton minutes(u"Minute"_s, {u"00"_s, u"05"_s, u"10"_s, u"50"_s});
    minutes.show();
    const int pause = QApplication::keyboardInputInterval();
    constexpr int never = 1'000'000;
    QApplication::setKeyboardInputInterval(never);
    minutes.setChoice(u"50"_s);
    minutes.showPopup();
    QAbstractItemView &opened = *minutes.view();
    const auto type = [&](int key, const QString &text) {
        press(opened, key, text);
        return opened.currentIndex().data().toString();
    };
    EXPECT_EQ(type(Qt::Key_0, u"0"_s), u"00"_s);
    EXPECT_EQ(type(Qt::Key_5, u"5"_s), u"05"_s);
    QApplication::setKeyboardInputInterval(0);
    QElapsedTimer passed;
    passed.start();
    EXPECT_TRUE(waitUntil([&] { return passed.elapsed() > 1; }));
    EXPECT_EQ(type(Qt::Key_1, u"1"_s), u"10"_s) << "begun again after a pause";
    QApplication::setKeyboardInputInterval(pause);
    minutes.hidePopup();
}

TEST_F(SettingsPopUp, opens_with_the_choice_that_holds_over_the_button) {
    QStringList hours;
    for (int hour = 0; hour < 24; ++hour)
        hours.append(QString::number(hour));
    PopUpButton many(u"Hour"_s, hours); // more than the list is high
    many.resize(many.sizeHint());
    const auto expectOver = [&](PopUpButton &opened, const QString &choice) {
        opened.move(300, 380); // in the middle of the screen
        opened.show();
        opened.setChoice(choice);
        opened.showPopup();
        QApplication::processEvents();
        const QAbstractItemView &shown = *opened.view();
        const QPoint item = shown.viewport()->mapToGlobal(shown.visualRect(shown.currentIndex()).center());
        EXPECT_NEAR(item.y(), opened.mapToGlobal(opened.rect().center()).y(), 1) << qPrintable(choice);
        EXPECT_LE(shown.window()->height(), 440) << "it leaves something of the screen";
        opened.hidePopup();
    };
    for (const auto &choice : {u"None"_s, u"Glass"_s, u"Submarine"_s})
        expectOver(button, choice);
    for (const auto &hour : {u"8"_s, u"12"_s, u"15"_s})
        expectOver(many, hour);
}

TEST_F(SettingsPopUp, opens_on_the_screen_however_near_its_edge) {
    const QRect screen = button.screen()->availableGeometry();
    for (const QPoint place : {screen.topLeft(), screen.bottomRight()}) {
        button.move(place - QPoint(4, 4));
        button.showPopup();
        for (int row = 0; row < button.count(); ++row)
            EXPECT_TRUE(screen.contains(list().viewport()->mapToGlobal(middleOf(row))));
        button.hidePopup();
    }
}

TEST_F(SettingsPopUp, lights_a_choice_below_a_pointer_that_moves_and_not_below_one_at_rest) {
    button.showPopup();
    const QPoint none = middleOf(0);
    QEnterEvent enter(none, none, list().viewport()->mapToGlobal(none));
    QApplication::sendEvent(list().viewport(), &enter);
    EXPECT_EQ(lit(), u"Glass"_s);
    pointAt(none, QEvent::MouseMove);
    EXPECT_EQ(lit(), u"None"_s);
}

TEST_F(SettingsPopUp, escape_leaves_the_choice_as_it_was) {
    button.showPopup();
    press(list(), Qt::Key_Escape);
    EXPECT_TRUE(chosen.isEmpty());
    EXPECT_EQ(button.choice(), u"Glass"_s);
    EXPECT_FALSE(button.isListShown());
}

TEST_F(SettingsPopUp, shows_a_choice_that_is_not_offered) {
    const QImage before = button.grab().toImage();
    button.setChoice(u"Owl"_s);
    EXPECT_EQ(accessible(button)->text(QAccessible::Value), u"Owl"_s);
    EXPECT_NE(button.grab().toImage(), before);
    button.showPopup();
    EXPECT_EQ(button.currentIndex(), -1) << "none is ticked";
}

TEST_F(SettingsPopUp, is_a_combo_box_with_a_list_to_assistive_technology) {
    QAccessibleInterface *box = accessible(button);
    EXPECT_EQ(box->role(), QAccessible::ComboBox);
    EXPECT_EQ(box->text(QAccessible::Name), u"Break starts"_s);
    EXPECT_EQ(box->text(QAccessible::Value), u"Glass"_s);
    EXPECT_EQ(box->childCount(), 0) << "closed";
    box->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    ASSERT_EQ(box->childCount(), 1);
    QAccessibleInterface *opened = box->child(0);
    EXPECT_EQ(opened->role(), QAccessible::List);
    EXPECT_EQ(opened->parent()->object(), &button);
    ASSERT_EQ(opened->childCount(), 3);
    QAccessibleInterface *item = opened->child(2);
    EXPECT_EQ(item->role(), QAccessible::ListItem);
    EXPECT_EQ(item->text(QAccessible::Name), u"Submarine"_s);
    item->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(chosen, QStringList{u"Submarine"_s});
    EXPECT_EQ(button.choice(), u"Submarine"_s);
    EXPECT_FALSE(button.isListShown());
}

TEST_F(SettingsPopUp, without_choices_it_takes_every_key_all_the_same) {
    PopUpButton none(u"Break ends"_s, {});
    none.show();
    for (const int key : {Qt::Key_Return, Qt::Key_Down, Qt::Key_Home, Qt::Key_A, Qt::Key_Escape})
        press(none, key, u"a"_s);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(none.choice(), QString());
}

TEST_F(SettingsPopUp, lets_the_page_scroll_by_the_wheel) {
    QWheelEvent wheel({10, 10}, button.mapToGlobal(QPointF(10, 10)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&button, &wheel);
    EXPECT_FALSE(wheel.isAccepted());
    EXPECT_EQ(button.choice(), u"Glass"_s);
}

TEST_F(SettingsControls, a_field_keeps_the_cursor_of_somebody_who_types) {
    const std::unique_ptr<QLineEdit> field(lineEdit(u"When a break starts"_s));
    showText(*field, u"one two"_s);
    field->setCursorPosition(3);
    showText(*field, u"one two"_s);
    EXPECT_EQ(field->cursorPosition(), 3);
}

TEST_F(SettingsControls, odd_texts_are_shown_and_kept_as_they_are) {
    const QStringList odd{u"🦚 emoji 👩‍💻"_s, u"שלום עולם"_s, QString(10'000, u'x'),
                          u"two\nlines\r\nand more"_s, QString(),      QString(QChar(0xD800))};
    for (const QString &text : odd) {
        Text label(text, Text::Style::label);
        EXPECT_EQ(label.text().size(), text.size());
        label.resize(300, label.heightForWidth(300));
        EXPECT_FALSE(label.grab().isNull());
        const std::unique_ptr<QLineEdit> field(lineEdit(u"Label"_s));
        showText(*field, text);
        EXPECT_EQ(field->text(), text);
        field->resize(300, 40);
        EXPECT_FALSE(field->grab().isNull());
        ListRow row({text, text}, [] {});
        row.resize(300, 40);
        EXPECT_FALSE(row.grab().isNull());
    }
}

TEST_F(SettingsControls, a_text_grows_to_what_its_width_leaves_it) {
    Text text(QString(600, u'x'), Text::Style::label);
    EXPECT_GT(text.heightForWidth(200), text.heightForWidth(400));
    EXPECT_GE(text.heightForWidth(100'000), text.fontMetrics().height());
    EXPECT_LE(text.minimumSizeHint().width(), 200);
}

TEST_F(SettingsControls, an_entry_of_a_list_is_removed_by_its_button) {
    int removed = 0;
    ListRow row({u"Firefox"_s}, [&] { ++removed; });
    auto *remove = row.findChild<QAbstractButton *>();
    ASSERT_NE(remove, nullptr);
    EXPECT_EQ(remove->accessibleName(), u"Remove Firefox"_s);
    remove->click();
    EXPECT_EQ(removed, 0) << "the button is still being clicked";
    QApplication::processEvents();
    EXPECT_EQ(removed, 1);
}

TEST_F(SettingsControls, a_wheel_with_notches_scrolls_smoothly) {
    auto *content = new QWidget;
    content->setMinimumHeight(2000);
    ScrollArea area(content);
    area.resize(300, 300);
    area.show();
    turnWheel(area);
    EXPECT_EQ(area.verticalScrollBar()->value(), 0);
    platform.loop.advance(0.03);
    const int soon = area.verticalScrollBar()->value();
    EXPECT_GT(soon, 0);
    platform.loop.advance(2);
    const int end = area.verticalScrollBar()->value();
    EXPECT_GT(end, soon);
    platform.colours.current.reducedMotion = true;
    turnWheel(area);
    EXPECT_EQ(area.verticalScrollBar()->value(), 2 * end);
}

TEST_F(SettingsControls, scrolling_ends_at_the_end) {
    auto *content = new QWidget;
    content->setMinimumHeight(400);
    ScrollArea area(content);
    area.resize(300, 300);
    area.show();
    for (int notch = 0; notch < 20; ++notch)
        turnWheel(area);
    platform.loop.advance(3);
    EXPECT_EQ(area.verticalScrollBar()->value(), area.verticalScrollBar()->maximum());
    EXPECT_EQ(area.verticalScrollBar()->maximum(), 100);
}

TEST_F(SettingsControls, a_hairline_is_one_whole_device_pixel_at_every_ratio_and_place) {
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        for (int place = 0; place < 8; ++place) {
            QImage image(40, 60, QImage::Format_RGB32);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.translate(0, place);
            drawHairline(painter, {2, 0}, {10, 0}, Qt::black);
            painter.end();
            int dark = 0;
            for (int y = 0; y < image.height(); ++y) {
                const QColor pixel = image.pixelColor(static_cast<int>(5 * ratio), y);
                dark += pixel == Qt::black;
                EXPECT_TRUE(pixel == Qt::black || pixel == Qt::white) << ratio << " " << place;
                if (pixel == Qt::black) {
                    EXPECT_GE(y + 0.01, place * ratio) << "in the widget above";
                }
            }
            EXPECT_EQ(dark, 1) << ratio << " " << place;
        }
    }
}

} // namespace pavonel::test
