#include "UI/Controls/Button.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Pages/Stats/WeekChart.h"
#include "UI/Style/FocusRing.h"
#include "support/OpenSettings.h"
#include "support/waitUntil.h"
#include "support/windows.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

#include <gtest/gtest.h>
#include <private/qguiapplication_p.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// What users of the settings rely on without thinking of it.
struct SettingsManners : testing::Test {
    OpenSettings open;

    Button *button(const QString &name) { return open.widget<Button>(QAccessible::Button, name); }
    QWidget *control(QAccessible::Role role, const QString &name, const QString &card = {}) {
        return open.widget<QWidget>(role, name, card);
    }
    void settle() {
        QApplication::processEvents();
        open.settle();
        QApplication::processEvents();
    }
    static void press(QWidget *target, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                      bool again = false) {
        ASSERT_NE(target, nullptr);
        QKeyEvent event(QEvent::KeyPress, key, modifiers, {}, again);
        QApplication::sendEvent(target, &event);
    }
    QScrollBar &pageBar() {
        QScrollBar *found = nullptr;
        for (auto *area : open.window()->findChildren<QScrollArea *>()) {
            if (area->width() > 300)
                found = area->verticalScrollBar();
        }
        return *found;
    }
};

/// The names of what was announced.
class Announcements {
public:
    Announcements() {
        texts().clear();
        setActive(true);
        before_ = QAccessible::installUpdateHandler(note);
    }
    Announcements(const Announcements &) = delete;
    Announcements &operator=(const Announcements &) = delete;
    ~Announcements() {
        QAccessible::installUpdateHandler(before_);
        setActive(false);
    }

    static QStringList &texts() {
        static QStringList told;
        return told;
    }

private:
    static void setActive(bool active) {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(active);
    }
    static void note(QAccessibleEvent *event) {
        const auto *widget = qobject_cast<QWidget *>(event->object());
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
        const bool announces = event->type() == QAccessible::Announcement;
#else
        const bool announces = event->type() == QAccessible::Alert;
#endif
        if (announces && widget)
            texts().append(widget->accessibleName());
    }

    QAccessible::UpdateHandler before_ = nullptr;
};

} // namespace

TEST_F(SettingsManners, holding_return_acts_once) {
    open.settings.messages = QStringList{u"a"_s, u"b"_s, u"c"_s};
    open.show(Page::appearance);
    button(u"Remove a"_s)->setFocus(Qt::TabFocusReason);
    press(open.window()->focusWidget(), Qt::Key_Return);
    settle();
    for (int repeat = 0; repeat < 20; ++repeat) {
        press(open.window()->focusWidget(), Qt::Key_Return, Qt::NoModifier, true);
        settle();
    }
    EXPECT_EQ(open.settings.messages.get(), (QStringList{u"b"_s, u"c"_s}));
    open.show(Page::phone);
    QWidget *pair = button(u"Show pairing code"_s);
    for (int repeat = 0; repeat < 10; ++repeat)
        press(pair, Qt::Key_Return, Qt::NoModifier, repeat > 0);
    settle();
    EXPECT_EQ(open.platform.web.exchanges.size(), 1U);
}

TEST_F(SettingsManners, the_window_opens_within_a_low_screen_with_its_title_bar) {
    for (const QRect free : {QRect(0, 28, 910, 450), QRect(70, 0, 890, 510), QRect(0, 0, 1920, 1040)}) {
        const QRect place = windowPlace(free, {800, 560});
        EXPECT_TRUE(free.contains(place)) << place.height();
        EXPECT_GE(place.top() - free.top(), 30) << "there is room for the title bar";
    }
    EXPECT_EQ(windowPlace({0, 0, 1920, 1040}, {800, 560}).size(), QSize(800, 560));
}

TEST_F(SettingsManners, the_end_of_a_page_can_be_scrolled_to_in_a_low_window) {
    open.show(Page::breaks);
    open.window()->setMinimumSize(0, 0);
    open.window()->resize(800, 300);
    settle();
    pageBar().setValue(pageBar().maximum());
    const QWidget *last = control(QAccessible::CheckBox, u"Strict mode"_s);
    EXPECT_LE(last->mapTo(open.window(), QPoint(0, last->height())).y(), 300);
}

TEST_F(SettingsManners, the_keyboard_stays_in_the_update_card_and_its_ring_is_shown) {
    open.show(Page::advanced);
    QWidget *card = control(QAccessible::Grouping, u"Updates"_s);
    button(u"Check now"_s)->setFocus(Qt::TabFocusReason);
    const auto stays = [&](const Updater::State &state) {
        open.updater.state = state;
        settle();
        const QWidget *focused = open.window()->focusWidget();
        return focused && card->isAncestorOf(focused) && FocusRing::isOn(*focused);
    };
    EXPECT_TRUE(stays(Updater::Checking{}));
    EXPECT_TRUE(stays(Updater::Available{u"1.3"_s, u"Calmer fades."_s}));
    EXPECT_EQ(open.window()->focusWidget(), button(u"Install and restart"_s));
    EXPECT_TRUE(stays(Updater::Downloading{0.2}));
    EXPECT_TRUE(stays(Updater::Failed{u"The disk is full."_s}));
    EXPECT_EQ(open.window()->focusWidget(), button(u"Check now"_s));
}

TEST_F(SettingsManners, what_comes_of_an_act_is_announced) {
    open.show(Page::advanced);
    const Announcements told;
    open.updater.state = Updater::UpToDate{};
    settle();
    EXPECT_TRUE(told.texts().contains(u"You are up to date."_s)) << qPrintable(told.texts().join(u'|'));
    open.platform.login.failure = u"The disk is full."_s;
    open.widget<QAbstractButton>(QAccessible::CheckBox, u"Launch at login"_s)->click();
    settle();
    EXPECT_TRUE(told.texts().contains(u"The disk is full."_s));
    open.show(Page::phone);
    open.phone.state = Phone::Waiting{u"481902"_s};
    settle();
    EXPECT_TRUE(told.texts().last().contains(u"481902"_s));
    open.phone.state = Phone::Failed{u"Could not reach the pairing service."_s};
    settle();
    EXPECT_TRUE(told.texts().last().contains(u"Could not reach the pairing service."_s));
}

TEST_F(SettingsManners, a_steppers_spoken_value_is_the_shown_text) {
    open.show(Page::breaks);
    QAccessibleInterface *stepper = open.find(QAccessible::SpinBox, u"Every"_s, u"Micro break"_s);
    ASSERT_NE(stepper, nullptr);
    ASSERT_NE(stepper->textInterface(), nullptr);
    QAccessibleTextInterface &text = *stepper->textInterface();
    EXPECT_EQ(text.text(0, text.characterCount()), u"20m"_s);
}

TEST_F(SettingsManners, a_held_stepper_stops_when_the_pointer_leaves) {
    open.show(Page::breaks);
    auto *stepper = open.widget<Stepper>(QAccessible::SpinBox, u"Every"_s, u"Micro break"_s);
    const QPointF plus(stepper->width() - 16.0, stepper->height() / 2.0);
    const auto send = [&](QEvent::Type type, QPointF where) {
        QMouseEvent event(type, where, stepper->mapToGlobal(where), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(stepper, &event);
    };
    send(QEvent::MouseButtonPress, plus);
    EXPECT_TRUE(waitUntil([&] { return stepper->value() > 1260; }));
    send(QEvent::MouseMove, plus + QPointF(0, 200));
    const double left = stepper->value();
    QElapsedTimer passed;
    passed.start();
    EXPECT_TRUE(waitUntil([&] { return passed.elapsed() > 600; }));
    EXPECT_EQ(stepper->value(), left);
}

TEST_F(SettingsManners, a_context_menu_shows_what_cannot_be_done_as_such) {
    open.show(Page::appearance);
    auto *field = open.widget<QLineEdit>(QAccessible::EditableText, u"Add a message"_s);
    QGuiApplication::clipboard()->setText(u"Look up"_s);
    const std::unique_ptr<QMenu> menu(field->createStandardContextMenu());
    menu->resize(menu->sizeHint());
    const QImage picture = menu->grab().toImage();
    const auto strongest = [&](const QString &text) {
        for (QAction *action : menu->actions()) {
            if (!action->text().contains(text))
                continue;
            const QRect line = menu->actionGeometry(action).adjusted(8, 2, -8, -2);
            double most = 1;
            for (int y = line.top(); y <= line.bottom(); ++y)
                for (int x = line.left(); x <= line.right(); ++x)
                    most = std::max(most, contrast(picture.pixelColor(x, y), picture.pixelColor(3, 3)));
            return most;
        }
        return 0.0;
    };
    EXPECT_LT(strongest(u"Undo"_s), 9) << "there is nothing to undo";
    EXPECT_GT(strongest(u"Paste"_s), strongest(u"Undo"_s) + 3) << "there is something to paste";
}

TEST_F(SettingsManners, dialogs_and_tooltips_follow_dark_mode) {
    open.show();
    EXPECT_GT(QApplication::palette().color(QPalette::Window).lightness(), 200);
    EXPECT_GT(QToolTip::palette().color(QPalette::ToolTipBase).lightness(), 200);
    open.platform.colours.change({true, false, {}});
    EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 60);
    EXPECT_LT(QToolTip::palette().color(QPalette::ToolTipBase).lightness(), 60);
    EXPECT_GT(QToolTip::palette().color(QPalette::ToolTipText).lightness(), 200);
}

TEST_F(SettingsManners, rows_are_pale_while_what_they_depend_on_is_off_and_keep_their_values) {
    open.settings.strictMode = true;
    open.show(Page::breaks);
    auto *skip = open.widget<QAbstractButton>(QAccessible::CheckBox, u"Breaks can be skipped"_s);
    EXPECT_FALSE(skip->isEnabled());
    EXPECT_TRUE(skip->isChecked());
    open.settings.strictMode = false;
    open.settings.microEnabled = false;
    settle();
    EXPECT_TRUE(skip->isEnabled());
    EXPECT_FALSE(control(QAccessible::SpinBox, u"Every"_s, u"Micro break"_s)->isEnabled());
    EXPECT_TRUE(control(QAccessible::SpinBox, u"Every"_s, u"Long break"_s)->isEnabled());
    open.settings.naturalBreakEnabled = false;
    open.show(Page::pausing);
    EXPECT_FALSE(control(QAccessible::SpinBox, u"After"_s)->isEnabled());
    open.settings.soundEnabled = false;
    open.show(Page::appearance);
    EXPECT_FALSE(control(QAccessible::ComboBox, u"Break starts"_s)->isEnabled());
    open.settings.postureEnabled = false;
    open.show(Page::wellness);
    EXPECT_FALSE(control(QAccessible::SpinBox, u"Every"_s, u"Posture"_s)->isEnabled());
}

TEST_F(SettingsManners, a_click_on_a_rows_label_turns_its_switch) {
    open.show(Page::breaks);
    for (Text *text : childrenOf<Text>(open.window())) {
        if (text->text() == u"Strict mode"_s)
            click(*text);
    }
    EXPECT_TRUE(open.settings.strictMode);
}

TEST_F(SettingsManners, an_added_planned_break_is_seen_with_the_keyboard_in_its_label) {
    open.settings.plannedBreaks = PlannedBreaks(12);
    open.show(Page::planned);
    click(*button(u"Add planned break"_s));
    settle();
    auto *label = qobject_cast<QLineEdit *>(open.window()->focusWidget());
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->accessibleName(), u"Label"_s);
    EXPECT_EQ(label->selectedText(), label->text());
    const QRect seen(label->mapTo(open.window(), QPoint(0, 0)), label->size());
    EXPECT_TRUE(open.window()->rect().contains(seen)) << seen.top();
}

TEST_F(SettingsManners, the_time_of_a_planned_break_has_its_colon_and_its_length_a_label) {
    open.scenario.plan(12, 30, 1800);
    open.show(Page::planned);
    EXPECT_TRUE(open.texts().contains(u":"_s));
    EXPECT_TRUE(open.texts().contains(u"For"_s));
    EXPECT_EQ(open.find(QAccessible::SpinBox, u"Duration"_s)->textInterface()->text(0, 10), u"30m"_s);
}

TEST_F(SettingsManners, removing_a_planned_break_can_be_undone) {
    open.scenario.plan(9, 0, 600, u"Tea"_s);
    open.scenario.plan(12, 30, 1800, u"Lunch"_s);
    const PlannedBreaks before = open.settings.plannedBreaks;
    open.show(Page::planned);
    EXPECT_EQ(button(u"Undo removing Tea"_s), nullptr);
    click(*button(u"Remove Tea"_s));
    settle();
    EXPECT_EQ(open.settings.plannedBreaks->size(), 1U);
    click(*button(u"Undo removing Tea"_s));
    settle();
    EXPECT_EQ(open.settings.plannedBreaks.get(), before);
    EXPECT_EQ(button(u"Undo removing Tea"_s), nullptr);
}

TEST_F(SettingsManners, removing_a_message_or_an_application_can_be_undone) {
    open.settings.messages = QStringList{u"a"_s, u"b"_s, u"c"_s};
    open.show(Page::appearance);
    click(*button(u"Remove b"_s));
    settle();
    click(*button(u"Undo removing b"_s));
    EXPECT_EQ(open.settings.messages.get(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    open.settings.deepFocusApps = QStringList{u"org.example.quill"_s};
    open.show(Page::pausing);
    click(*button(u"Remove org.example.quill"_s));
    settle();
    EXPECT_TRUE(open.settings.deepFocusApps->isEmpty());
    click(*button(u"Undo removing org.example.quill"_s));
    EXPECT_EQ(open.settings.deepFocusApps.get(), QStringList{u"org.example.quill"_s});
}

TEST_F(SettingsManners, a_message_can_be_read_whole_and_edited_in_its_place) {
    const QString longOne = u"Look at the <b>farthest</b> thing "_s.repeated(20).trimmed();
    open.settings.messages = QStringList{longOne, u"b"_s};
    open.show(Page::appearance);
    const auto rows = childrenOf<ListRow>(open.window());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_TRUE(rows[0]->toolTip().contains(longOne.toHtmlEscaped()));
    QWidget *remove = button(u"Remove b"_s);
    press(remove, Qt::Key_F2);
    auto *field = open.widget<QLineEdit>(QAccessible::EditableText, u"Edit b"_s);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text(), u"b"_s);
    field->setText(u"Breathe"_s);
    press(field, Qt::Key_Return);
    settle();
    EXPECT_EQ(open.settings.messages.get(), (QStringList{longOne, u"Breathe"_s}));
    press(button(u"Remove Breathe"_s), Qt::Key_F2);
    field = open.widget<QLineEdit>(QAccessible::EditableText, u"Edit Breathe"_s);
    ASSERT_NE(field, nullptr);
    field->setText(u"not this"_s);
    press(field, Qt::Key_Escape);
    settle();
    EXPECT_EQ(open.settings.messages->last(), u"Breathe"_s) << "Escape leaves it as it was";
    EXPECT_TRUE(open.window()->isVisible()) << "and the window open";
}

TEST_F(SettingsManners, the_chart_is_read_by_the_arrow_keys) {
    open.show(Page::stats);
    const auto charts = childrenOf<WeekChart>(open.window());
    ASSERT_EQ(charts.size(), 1U);
    WeekChart &chart = *charts.front();
    EXPECT_TRUE(chart.focusPolicy() & Qt::TabFocus);
    const QImage before = chart.grab().toImage();
    press(&chart, Qt::Key_Left);
    const QImage one = chart.grab().toImage();
    EXPECT_NE(one, before);
    press(&chart, Qt::Key_Left);
    EXPECT_NE(chart.grab().toImage(), one);
}

TEST_F(SettingsManners, the_chart_has_a_scale) {
    open.show(Page::stats);
    const WeekChart &chart = *childrenOf<WeekChart>(open.window()).front();
    const QImage picture = const_cast<WeekChart &>(chart).grab().toImage();
    const int right = picture.width() - 1;
    int inked = 0;
    for (int y = 30; y < picture.height() - 30; ++y)
        for (int x = right - 24; x <= right; ++x)
            inked += picture.pixelColor(x, y) != picture.pixelColor(right, picture.height() / 2);
    EXPECT_GT(inked, 10) << "hours are written beside the bars";
}

TEST_F(SettingsManners, notes_of_the_tray_and_of_waking_belong_to_no_setting) {
    open.platform.menuBar.reason = u"There is no tray."_s;
    open.platform.powerEvents.reason = u"Nobody tells of sleep."_s;
    open.show(Page::advanced);
    for (const QString &note : {u"There is no tray."_s, u"Nobody tells of sleep."_s}) {
        EXPECT_TRUE(open.texts().contains(note));
        EXPECT_EQ(open.find(QAccessible::StaticText, note, u"System"_s), nullptr);
    }
}

TEST_F(SettingsManners, failures_look_like_failures) {
    open.updater.state = Updater::Failed{u"The disk is full."_s};
    open.show(Page::advanced);
    const Palette palette(open.platform.colours.wishes());
    for (Text *text : childrenOf<Text>(open.window())) {
        if (text->text() != u"The disk is full."_s)
            continue;
        const QImage picture = text->grab().toImage();
        int red = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                red += pixel.alpha() > 100 && pixel.red() > pixel.green() + 60;
            }
        }
        EXPECT_GT(red, 10);
        return;
    }
    ADD_FAILURE() << "it is not told";
}

TEST_F(SettingsManners, control_w_and_escape_close_the_window) {
    open.show(Page::breaks);
    press(control(QAccessible::CheckBox, u"Strict mode"_s), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(open.window(), nullptr);
    open.show(Page::breaks);
    press(control(QAccessible::SpinBox, u"Every"_s, u"Micro break"_s), Qt::Key_Escape);
    EXPECT_EQ(open.window(), nullptr);
}

TEST_F(SettingsManners, page_up_and_page_down_scroll_the_page_from_everywhere) {
    open.show(Page::appearance);
    for (QWidget *from : {control(QAccessible::RadioButton, u"Appearance"_s),
                          control(QAccessible::ComboBox, u"Break starts"_s),
                          control(QAccessible::EditableText, u"Add a message"_s),
                          control(QAccessible::CheckBox, u"Play sounds"_s)}) {
        pageBar().setValue(0);
        press(from, Qt::Key_PageDown);
        EXPECT_GT(pageBar().value(), 0) << qPrintable(from->accessibleName());
        press(from, Qt::Key_PageUp);
        EXPECT_EQ(pageBar().value(), 0);
    }
}

TEST_F(SettingsManners, the_application_chooser_is_modal_and_takes_nothing_for_an_empty_search) {
    open.platform.installed.applications = {{u"org.gimp.GIMP"_s, u"GIMP"_s}, {u"writer"_s, u"Writer"_s}};
    open.show(Page::pausing);
    click(*button(u"Choose app…"_s));
    settle();
    QAccessibleInterface *sheet = open.find(QAccessible::Dialog, u"Choose an application"_s);
    ASSERT_NE(sheet, nullptr);
    EXPECT_TRUE(sheet->state().modal);
    QWidget *search = control(QAccessible::EditableText, u"Search"_s);
    press(search, Qt::Key_Return);
    EXPECT_TRUE(open.settings.deepFocusApps->isEmpty());
    QStringList stops;
    for (int step = 0; step < 4; ++step) {
        stops.append(open.window()->focusWidget()->accessibleName());
        press(open.window()->focusWidget(), Qt::Key_Down);
    }
    EXPECT_EQ(stops.mid(0, 3), (QStringList{u"Search"_s, u"GIMP"_s, u"Writer"_s}));
    for (int step = 0; step < 4; ++step)
        press(open.window()->focusWidget(), Qt::Key_Up);
    EXPECT_EQ(open.window()->focusWidget(), search) << "back the same way";
}

TEST_F(SettingsManners, the_footer_of_the_phone_is_small) {
    open.show(Page::phone);
    for (Text *text : childrenOf<Text>(open.window())) {
        if (text->text().startsWith(u"Only the break itself"_s)) {
            EXPECT_EQ(text->font().pixelSize(), visuals().font(11).pixelSize());
        }
    }
}

TEST_F(SettingsManners, a_switch_can_be_seen_on_every_accent) {
    open.settings.strictMode = true;
    for (const std::uint32_t accent : {0xF5C211U, 0xFFFF00U, 0xFFFFFFU}) {
        open.platform.colours.change({false, true, accent});
        open.show(Page::breaks);
        settle();
        QWidget *strict = control(QAccessible::CheckBox, u"Strict mode"_s);
        const QImage picture = strict->grab().toImage();
        const int middle = picture.height() / 2;
        const QColor track = picture.pixelColor(FocusRing::room + 6, middle);
        const QColor knob = picture.pixelColor(picture.width() - FocusRing::room - 11, middle);
        EXPECT_GE(contrast(track, knob), 3) << accent;
    }
}

} // namespace pavonel::test
