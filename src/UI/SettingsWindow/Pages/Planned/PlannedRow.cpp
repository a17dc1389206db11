#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"

#include "Core/Characters.h"
#include "Core/ClockText.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedEditing.h"
#include "UI/SettingsWindow/Pages/Planned/WeekdayToggle.h"
#include "UI/SettingsWindow/Rows/StepValue.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QLineEdit>

namespace pavonel {

namespace {

constexpr int lineHeight = 36;
constexpr int air = 9; // above and below the two lines
constexpr Range durations{300, 14400};
constexpr double durationStep = 300;
constexpr int hours = 24;
constexpr int minutes = 60;

QHBoxLayout *line(QWidget *of) {
    auto *line = new QHBoxLayout(of);
    line->setContentsMargins({});
    line->setSpacing(0);
    return line;
}

} // namespace

PlannedRow::PlannedRow(Visuals &visuals, std::function<void(const Edit &)> change,
                       std::function<void()> remove)
    : change_(std::move(change)) {
    auto *lines = new QVBoxLayout(this);
    constexpr int room = FocusRing::room;
    lines->setContentsMargins(CardRow::margin - room, air, 0, air);
    lines->setSpacing(0);
    lines->addWidget(firstLine(visuals));
    lines->addWidget(secondLine(visuals));
    connect(remove_, &Button::clicked, this, std::move(remove),
            Qt::QueuedConnection); // this row goes with it
}

void PlannedRow::takeKeyboard() {
    label_->setFocus(Qt::TabFocusReason);
    label_->selectAll();
}

int PlannedRow::rowHeight(const Visuals &visuals) {
    return 2 * visuals.length(lineHeight) + 2 * air;
}

QWidget *PlannedRow::firstLine(Visuals &visuals) {
    auto *place = new QWidget;
    auto *row = line(place);
    row->setContentsMargins(0, 0, CardRow::margin - Button::besideSymbol(visuals), 0);
    label_ = lineEdit(QStringLiteral("Label"), QStringLiteral("Label"));
    connect(label_, &QLineEdit::textChanged, this, [this](const QString &text) {
        change_([&](PlannedBreak &planned) { planned.label = text; });
        nameAfter(text);
    });
    hour_ = picker(visuals, QStringLiteral("Hour"), hours, hourText, &PlannedBreak::hour);
    minute_ = picker(visuals, QStringLiteral("Minute"), minutes, minuteText, &PlannedBreak::minute);
    enabled_ = new Switch(visuals, QStringLiteral("Enabled"));
    connect(enabled_, &Switch::toggled, this,
            [this](bool on) { change_([on](PlannedBreak &planned) { planned.enabled = on; }); });
    remove_ = Button::ofSymbol(QStringLiteral("xmark.circle.fill"), QStringLiteral("Remove"));
    row->addWidget(label_, 1);
    row->addSpacing(8);
    row->addWidget(hour_);
    row->addWidget(new Text(visuals, QStringLiteral(":"), Text::Style::label));
    row->addWidget(minute_);
    row->addSpacing(8);
    row->addWidget(enabled_);
    row->addSpacing(4);
    row->addWidget(remove_);
    return place;
}

QWidget *PlannedRow::secondLine(Visuals &visuals) {
    auto *place = new QWidget;
    auto *row = line(place);
    row->setContentsMargins(0, 0, CardRow::margin - FocusRing::room, 0);
    for (const int weekday : WeekdayToggle::inOrder()) {
        auto *toggle = new WeekdayToggle(visuals, weekday);
        connect(toggle, &WeekdayToggle::toggled, this,
                [this, weekday](bool on) { toggleWeekday(weekday, on); });
        weekdays_.push_back(toggle);
        row->addWidget(toggle);
    }
    duration_ = new Stepper(visuals, QStringLiteral("Duration"), durations, durationStep, humanText);
    durationText_ = new StepValue(visuals, humanText);
    duration_->onStep = [this](double seconds) {
        change_([seconds](PlannedBreak &planned) { planned.duration = seconds; });
    };
    duration_->onChange = [this](double seconds) { durationText_->setValue(seconds); };
    row->addStretch();
    row->addWidget(new Text(visuals, QStringLiteral("For"), Text::Style::secondary));
    row->addSpacing(6);
    row->addWidget(durationText_);
    row->addSpacing(6);
    row->addWidget(duration_);
    return place;
}

PopUpButton *PlannedRow::picker(Visuals &visuals, const QString &name, int count, QString (*text)(int),
                                int PlannedBreak::*field) {
    QStringList choices;
    for (int value = 0; value < count; ++value)
        choices.append(text(value));
    auto *button = new PopUpButton(visuals, name, choices);
    button->onChoice = [this, choices, field](const QString &choice) {
        const auto value = static_cast<int>(choices.indexOf(choice));
        change_([=](PlannedBreak &planned) { planned.*field = value; });
    };
    return button;
}

void PlannedRow::toggleWeekday(int weekday, bool on) {
    change_([=](PlannedBreak &planned) {
        if (on)
            planned.weekdays.insert(weekday);
        else
            planned.weekdays.erase(weekday);
    });
}

void PlannedRow::display(const PlannedBreak &planned) {
    showText(*label_, planned.label);
    hour_->setChoice(hourText(planned.hour));
    minute_->setChoice(minuteText(planned.minute));
    enabled_->setOn(planned.enabled);
    duration_->setValue(planned.duration);
    durationText_->setValue(planned.duration);
    for (WeekdayToggle *toggle : weekdays_)
        toggle->setOn(planned.weekdays.contains(toggle->weekday()));
    nameAfter(planned.label);
}

void PlannedRow::nameAfter(const QString &label) {
    constexpr qsizetype longest = 100;
    const QString name = beginning(label, longest).simplified();
    setAccessibleName(name.isEmpty() ? QStringLiteral("Planned break") : name);
    remove_->setAccessibleName(QStringLiteral("Remove ") + name);
}

QAccessibleInterface *PlannedRow::makeAccessible() {
    return new QAccessibleWidget(this, QAccessible::Grouping);
}

} // namespace pavonel
