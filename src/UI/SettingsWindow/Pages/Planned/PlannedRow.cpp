#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"

#include "Core/Characters.h"
#include "Core/ClockText.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedEditing.h"
#include "UI/SettingsWindow/Pages/Planned/WeekdayToggle.h"

#include <QLineEdit>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int lineHeight = 36;
constexpr int air = 9; // above and below the lines
constexpr int gap = 8; // beside the time
constexpr int left = CardRow::margin - FocusRing::room;
constexpr Range durations{300, 14400};
constexpr double durationStep = 300;
constexpr int hours = 24;
constexpr int minutes = 60;

/// Whether the label and the time stand side by side, as do the weekdays and the length.
bool isWide(int width, const Visuals &visuals) {
    constexpr int widest = 410; // points at the ordinary text size
    return width >= visuals.length(widest);
}

} // namespace

PlannedRow::PlannedRow(Visuals &visuals, std::function<void(const Edit &)> change,
                       std::function<void()> remove)
    : visuals_(visuals), change_(std::move(change)) {
    setAccessibleRole(*this, QAccessible::Grouping);
    addFirstLine();
    addWeekdays();
    addDuration();
    connect(remove_, &Button::clicked, this, std::move(remove),
            Qt::QueuedConnection); // this row goes with it
}

void PlannedRow::takeKeyboard() {
    label_->setFocus(Qt::TabFocusReason);
    label_->selectAll();
}

int PlannedRow::heightAt(int width, const Visuals &visuals) {
    return (isWide(width, visuals) ? 2 : 4) * visuals.length(lineHeight) + 2 * air;
}

QSize PlannedRow::minimumSizeHint() const {
    const int buttons = enabled_->sizeHint().width() + 4 + remove_->sizeHint().width();
    const int widest = std::max(
        {time_->sizeHint().width() + gap + buttons, days_->sizeHint().width(), length_->sizeHint().width()});
    return {left + widest + CardRow::margin, heightAt(width(), visuals_)};
}

void PlannedRow::addFirstLine() {
    label_ = lineEdit(QStringLiteral("Label"), QStringLiteral("Label"));
    connect(label_, &QLineEdit::textChanged, this, [this](const QString &text) {
        change_([&](PlannedBreak &planned) { planned.label = text; });
        nameAfter(text);
    });
    hour_ = picker(QStringLiteral("Hour"), hours, hourText, &PlannedBreak::hour);
    minute_ = picker(QStringLiteral("Minute"), minutes, minuteText, &PlannedBreak::minute);
    enabled_ = new Switch(visuals_, QStringLiteral("Enabled"));
    connect(enabled_, &Switch::toggled, this,
            [this](bool on) { change_([on](PlannedBreak &planned) { planned.enabled = on; }); });
    remove_ = Button::ofSymbol(QStringLiteral("xmark.circle.fill"), QStringLiteral("Remove"));
    label_->setParent(this);
    time_ = new QWidget(this);
    QHBoxLayout *clock = line(time_);
    clock->addWidget(hour_);
    clock->addWidget(new Text(visuals_, QStringLiteral(":"), Text::Style::label));
    clock->addWidget(minute_);
    enabled_->setParent(this);
    remove_->setParent(this);
}

void PlannedRow::addWeekdays() {
    days_ = new QWidget(this);
    QHBoxLayout *days = line(days_);
    for (const int weekday : WeekdayToggle::inOrder()) {
        auto *toggle = new WeekdayToggle(visuals_, weekday);
        connect(toggle, &WeekdayToggle::toggled, this,
                [this, weekday](bool on) { toggleWeekday(weekday, on); });
        days->addWidget(toggle);
        weekdays_.push_back(toggle);
    }
}

void PlannedRow::addDuration() {
    duration_ = new Stepper(QStringLiteral("Duration"), durations, durationStep, humanText);
    duration_->onStep = [this](double seconds) {
        change_([seconds](PlannedBreak &planned) { planned.duration = seconds; });
    };
    length_ = new QWidget(this);
    QHBoxLayout *parts = line(length_, {}, 6);
    parts->addWidget(new Text(visuals_, QStringLiteral("For"), Text::Style::secondary));
    parts->addWidget(duration_);
}

bool PlannedRow::event(QEvent *event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
        arrange();
    return QWidget::event(event);
}

/// The controls keep their order, on however many lines they stand.
void PlannedRow::arrange() {
    const bool wide = isWide(width(), visuals_);
    const int high = visuals_.length(lineHeight);
    const int right = width() - CardRow::margin + FocusRing::room;
    int y = air;
    const auto place = [&](QWidget *widget, int x, int breadth) {
        const int tall = widget->layout() ? high : widget->sizeHint().height();
        widget->setGeometry(x, y + (high - tall) / 2, breadth, tall);
        return x;
    };
    const auto placeBefore = [&](QWidget *widget, int end) {
        const int breadth = widget->sizeHint().width();
        return place(widget, end - breadth, breadth);
    };
    const int end = width() - CardRow::margin + Button::besideSymbol(visuals_);
    if (!wide) {
        place(label_, left, right - left);
        y += high;
    }
    const int buttons = placeBefore(enabled_, placeBefore(remove_, end) - 4);
    if (wide)
        place(label_, left, placeBefore(time_, buttons - gap) - gap - left);
    else
        place(time_, left, time_->sizeHint().width());
    y += high;
    place(days_, left, days_->sizeHint().width());
    if (!wide)
        y += high;
    placeBefore(length_, right);
}

PopUpButton *PlannedRow::picker(const QString &name, int count, QString (*text)(int),
                                int PlannedBreak::*field) {
    QStringList choices;
    for (int value = 0; value < count; ++value)
        choices.append(text(value));
    auto *button = new PopUpButton(visuals_, name, choices);
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

} // namespace pavonel
