#include "Core/ClockText.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "support/OpenSettings.h"
#include "support/windows.h"

#include <QLineEdit>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

struct Place {
    Page page;
    QString card;
    QString label;
};

struct SwitchCase {
    Place place;
    Setting<bool> Settings::*setting;
    QString note = {};
};

struct StepCase {
    Place place;
    Setting<double> Settings::*setting;
    Range range;
    double step;
    QString suffix = {};
};

struct FieldCase {
    Place place;
    Setting<QString> Settings::*setting;
};

template <class Case>
requires requires(const Case &row) {
    row.place.label;
}
void PrintTo(const Case &row, std::ostream *out) {
    *out << row.place.card.toStdString() << ", " << row.place.label.toStdString();
}

const std::vector<SwitchCase> switches{
    {{Page::breaks, u"Micro break"_s, u"Enabled"_s}, &Settings::microEnabled},
    {{Page::breaks, u"Long break"_s, u"Enabled"_s}, &Settings::longEnabled},
    {{Page::breaks, u"Heads-up"_s, u"Countdown follows the cursor"_s}, &Settings::showFloatingCountdown},
    {{Page::breaks, u"Behaviour"_s, u"Breaks can be skipped"_s}, &Settings::allowSkip},
    {{Page::breaks, u"Behaviour"_s, u"Breaks can be postponed"_s}, &Settings::allowPostpone},
    {{Page::breaks, u"Behaviour"_s, u"Strict mode"_s},
     &Settings::strictMode,
     u"No skipping, no postponing"_s},
    {{Page::pausing, u"Pause automatically"_s, u"In fullscreen apps"_s}, &Settings::pauseOnFullscreen},
    {{Page::pausing, u"Pause automatically"_s, u"While the microphone is in use"_s},
     &Settings::pauseOnMicrophone,
     u"Meetings and calls"_s},
    {{Page::pausing, u"Pause automatically"_s, u"While video or audio is playing"_s},
     &Settings::pauseOnAudio},
    {{Page::pausing, u"Pause automatically"_s, u"During screen recording or sharing"_s},
     &Settings::pauseOnScreenSharing},
    {{Page::pausing, u"Natural breaks"_s, u"Reset the timer when I step away"_s},
     &Settings::naturalBreakEnabled},
    {{Page::appearance, u"Sounds"_s, u"Play sounds"_s}, &Settings::soundEnabled},
    {{Page::wellness, u"Posture"_s, u"Enabled"_s}, &Settings::postureEnabled},
    {{Page::wellness, u"Blinking"_s, u"Enabled"_s}, &Settings::blinkEnabled},
    {{Page::advanced, u"System"_s, u"Launch at login"_s}, &Settings::launchAtLogin},
    {{Page::advanced, u"System"_s, u"Global shortcuts"_s},
     &Settings::hotKeysEnabled,
     u"⌃⌥⌘B take a break · ⌃⌥⌘S skip · ⌃⌥⌘P pause"_s},
};

const std::vector<StepCase> steppers{
    {{Page::breaks, u"Micro break"_s, u"Every"_s}, &Settings::microInterval, {60, 7200}, 60},
    {{Page::breaks, u"Micro break"_s, u"For"_s}, &Settings::microDuration, {5, 300}, 5},
    {{Page::breaks, u"Long break"_s, u"Every"_s}, &Settings::longInterval, {300, 14400}, 300},
    {{Page::breaks, u"Long break"_s, u"For"_s}, &Settings::longDuration, {60, 1800}, 60},
    {{Page::breaks, u"Heads-up"_s, u"Warn me before a break"_s}, &Settings::preNotifySeconds, {0, 300}, 5},
    {{Page::pausing, u"Natural breaks"_s, u"After"_s},
     &Settings::idleResetSeconds,
     {20, 600},
     10,
     u"of no input"_s},
    {{Page::wellness, u"Posture"_s, u"Every"_s}, &Settings::postureInterval, {300, 7200}, 300},
    {{Page::wellness, u"Blinking"_s, u"Every"_s}, &Settings::blinkInterval, {60, 3600}, 60},
};

const std::vector<FieldCase> fields{
    {{Page::advanced, u"Automation"_s, u"When a break starts"_s}, &Settings::onBreakStartScript},
    {{Page::advanced, u"Automation"_s, u"When a break ends"_s}, &Settings::onBreakEndScript},
};

template <class Case> class RowTest : public testing::TestWithParam<Case> {
protected:
    RowTest() { open.settings.blinkEnabled = true; } // else its row cannot be used; all others can

    OpenSettings open;

    template <class Control> Control *shown(QAccessible::Role role) {
        const Place &place = this->GetParam().place;
        open.show(place.page);
        return open.widget<Control>(role, place.label, place.card);
    }
    auto &setting() { return open.settings.*(this->GetParam().setting); }
};

using EverySwitch = RowTest<SwitchCase>;
using EveryStepper = RowTest<StepCase>;
using EveryField = RowTest<FieldCase>;

} // namespace

TEST_P(EverySwitch, shows_its_setting_and_writes_it_at_once) {
    auto *control = shown<Switch>(QAccessible::CheckBox);
    ASSERT_NE(control, nullptr);
    for (int twice = 0; twice < 2; ++twice) {
        const bool before = setting();
        EXPECT_EQ(control->isChecked(), before);
        control->click();
        EXPECT_EQ(setting(), !before);
        open.settle();
        EXPECT_EQ(control->isChecked(), !before);
    }
}

TEST_P(EverySwitch, follows_its_setting) {
    auto *control = shown<Switch>(QAccessible::CheckBox);
    ASSERT_NE(control, nullptr);
    setting() = !setting();
    open.settle();
    EXPECT_EQ(control->isChecked(), setting());
}

TEST_P(EverySwitch, has_its_note) {
    auto *control = shown<Switch>(QAccessible::CheckBox);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->accessibleDescription(), GetParam().note);
    if (!GetParam().note.isEmpty()) {
        EXPECT_TRUE(open.texts().contains(GetParam().note));
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, EverySwitch, testing::ValuesIn(switches));

TEST_P(EveryStepper, shows_its_setting_and_writes_each_step_at_once) {
    auto *control = shown<Stepper>(QAccessible::SpinBox);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->value(), setting());
    const QString suffix = GetParam().suffix.isEmpty() ? QString() : u' ' + GetParam().suffix;
    EXPECT_EQ(control->text(), humanText(setting()) + suffix);
    const double before = setting();
    control->stepBy(1);
    EXPECT_EQ(setting(), before + GetParam().step);
    control->stepBy(-1);
    control->stepBy(-1);
    EXPECT_EQ(setting(), before - GetParam().step);
}

TEST_P(EveryStepper, follows_its_setting) {
    auto *control = shown<Stepper>(QAccessible::SpinBox);
    ASSERT_NE(control, nullptr);
    setting() = GetParam().range.most;
    open.settle();
    EXPECT_EQ(control->value(), GetParam().range.most);
}

TEST_P(EveryStepper, does_not_step_beyond_its_bounds) {
    const auto [least, most] = GetParam().range;
    setting() = most;
    auto *control = shown<Stepper>(QAccessible::SpinBox);
    ASSERT_NE(control, nullptr);
    control->stepBy(1);
    EXPECT_EQ(setting(), most);
    setting() = least;
    open.settle();
    control->stepBy(-1);
    EXPECT_EQ(setting(), least);
    control->stepBy(1);
    EXPECT_EQ(setting(), least + GetParam().step);
}

TEST_P(EveryStepper, shows_a_value_that_is_no_length_and_steps_from_there_into_its_range) {
    const auto [least, most] = GetParam().range;
    for (const double absurd : {1e300, -1e300, 1e19, most + 1e6, least - 1e6}) {
        setting() = absurd;
        auto *control = shown<Stepper>(QAccessible::SpinBox);
        ASSERT_NE(control, nullptr);
        EXPECT_FALSE(control->text().isEmpty());
        EXPECT_FALSE(open.window()->grab().isNull());
        EXPECT_EQ(setting(), absurd) << "showing it changed it";
        control->stepBy(absurd > 0 ? -1 : 1);
        EXPECT_EQ(setting(), absurd > 0 ? most : least);
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, EveryStepper, testing::ValuesIn(steppers));

TEST_P(EveryField, shows_its_setting_and_writes_every_character_at_once) {
    setting() = u"shortcut:Tea"_s;
    auto *control = shown<QLineEdit>(QAccessible::EditableText);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->text(), u"shortcut:Tea"_s);
    control->end(false);
    control->insert(u"!"_s);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, u"a"_s);
    QApplication::sendEvent(control, &key);
    EXPECT_EQ(setting().get(), u"shortcut:Tea!a"_s);
}

TEST_P(EveryField, follows_its_setting) {
    auto *control = shown<QLineEdit>(QAccessible::EditableText);
    ASSERT_NE(control, nullptr);
    setting() = u"say hello"_s;
    open.settle();
    EXPECT_EQ(control->text(), u"say hello"_s);
}

INSTANTIATE_TEST_SUITE_P(Settings, EveryField, testing::ValuesIn(fields));

} // namespace pavonel::test
