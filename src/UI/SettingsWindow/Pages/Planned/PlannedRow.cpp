#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"

#include "Core/CalendarText.h"
#include "Core/Characters.h"
#include "Core/ClockText.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Visuals.h"

#include <QLineEdit>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int lineHeight = 36;
constexpr int air = 9; // above and below the lines
constexpr int gap = 8; // beside the time
constexpr int left = CardRow::margin - FocusRing::room;
constexpr int right = left;
constexpr Range durations{300, 14400};
constexpr double durationStep = 300;
constexpr int hours = 24;
constexpr int minutes = 60;

/// Whether the label and the time stand side by side, as do the weekdays and the length.
bool isWide(int width) {
    constexpr int widest = 410; // points at the ordinary text size
    return width >= visuals().length(widest);
}

/// As high as a line.
QHBoxLayout *half(int atTheRight = 0, int spacing = 0) {
    auto *half = line(nullptr, {0, 0, atTheRight, 0}, spacing);
    half->addStrut(visuals().length(lineHeight));
    return half;
}

/// Side by side, or one above the other.
QBoxLayout *pairOf(QLayout *one, QLayout *other) {
    auto *pair = new QBoxLayout(QBoxLayout::LeftToRight);
    pair->addLayout(one, 1);
    pair->addLayout(other);
    return pair;
}

} // namespace

PlannedRow::PlannedRow(std::function<void(const Edit &)> change, std::function<void()> remove)
    : change_(std::move(change)) {
    setAccessibleRole(*this, QAccessible::Grouping);
    auto *lines = column(this, {left, air, 0, air});
    lines->setSizeConstraint(QLayout::SetNoConstraint);
    makeHead();
    makeTime();
    makeWeekdays();
    makeDuration();
    lines->addLayout(first_ = pairOf(head_, time_));
    lines->addLayout(second_ = pairOf(days_, length_));
    connect(remove_, &Button::clicked, this, std::move(remove),
            Qt::QueuedConnection); // this row goes with it
}

void PlannedRow::takeKeyboard() {
    label_->setFocus(Qt::TabFocusReason);
    label_->selectAll();
}

int PlannedRow::heightAt(int width) {
    return (isWide(width) ? 2 : 4) * visuals().length(lineHeight) + 2 * air;
}

QSize PlannedRow::minimumSizeHint() const {
    const int widest =
        std::max({time_->sizeHint().width(), days_->sizeHint().width(), length_->sizeHint().width()});
    return {left + widest, heightAt(width())};
}

/// The controls keep their order, on however many lines they stand.
void PlannedRow::resizeEvent(QResizeEvent *) {
    const bool wide = isWide(width());
    for (QBoxLayout *pair : {first_, second_}) {
        pair->setDirection(wide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
        pair->setSpacing(wide ? gap : 0);
    }
    head_->setContentsMargins(0, 0, wide ? 0 : right, 0);
    layout()->activate();
}

void PlannedRow::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    CardRow::drawLine(painter, 0, width());
}

void PlannedRow::makeHead() {
    label_ = lineEdit(QStringLiteral("Label"), QStringLiteral("Label"));
    connect(label_, &QLineEdit::textChanged, this, [this](const QString &text) {
        change_([&](PlannedBreak &planned) { planned.label = text; });
        nameAfter(text);
    });
    head_ = half();
    head_->addWidget(label_);
}

void PlannedRow::makeTime() {
    hour_ = picker(QStringLiteral("Hour"), hours, hourText, &PlannedBreak::hour);
    minute_ = picker(QStringLiteral("Minute"), minutes, minuteText, &PlannedBreak::minute);
    enabled_ = new Switch(QStringLiteral("Enabled"));
    connect(enabled_, &Switch::toggled, this,
            [this](bool on) { change_([on](PlannedBreak &planned) { planned.enabled = on; }); });
    remove_ = Button::ofSymbol(QStringLiteral("xmark.circle.fill"), QStringLiteral("Remove"));
    time_ = half(CardRow::margin - besideSymbol());
    time_->addWidget(hour_);
    time_->addWidget(new Text(QStringLiteral(":"), Text::Style::label));
    time_->addWidget(minute_);
    time_->addSpacing(gap);
    time_->addStretch();
    time_->addWidget(enabled_);
    time_->addSpacing(gap / 2);
    time_->addWidget(remove_);
}

void PlannedRow::makeWeekdays() {
    days_ = half();
    for (const int weekday : weekdaysInOrder()) {
        auto *toggle = new Button(weekdayName(weekday).left(1), ButtonRole::disc);
        toggle->setCheckable(true);
        toggle->setAccessibleName(weekdayName(weekday));
        toggle->setToolTip(weekdayName(weekday));
        connect(toggle, &Button::toggled, this, [this, weekday](bool on) { toggleWeekday(weekday, on); });
        days_->addWidget(toggle);
        weekdays_[weekday] = toggle;
    }
    days_->addStretch();
}

void PlannedRow::makeDuration() {
    duration_ = new Stepper(QStringLiteral("Duration"), durations, durationStep, humanText);
    duration_->onStep = [this](double seconds) {
        change_([seconds](PlannedBreak &planned) { planned.duration = seconds; });
    };
    length_ = half(right, 6);
    length_->addStretch();
    length_->addWidget(new Text(QStringLiteral("For"), Text::Style::secondary));
    length_->addWidget(duration_);
}

PopUpButton *PlannedRow::picker(const QString &name, int count, QString (*text)(int),
                                int PlannedBreak::*field) {
    QStringList choices;
    for (int value = 0; value < count; ++value)
        choices.append(text(value));
    auto *button = new PopUpButton(name, choices);
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
    for (const auto &[weekday, toggle] : weekdays_) {
        const QSignalBlocker silence(toggle);
        toggle->setChecked(planned.weekdays.contains(weekday));
    }
    nameAfter(planned.label);
}

void PlannedRow::nameAfter(const QString &label) {
    constexpr qsizetype longest = 100;
    const QString name = beginning(label, longest).simplified();
    setAccessibleName(name.isEmpty() ? QStringLiteral("Planned break") : name);
    remove_->setAccessibleName(QStringLiteral("Remove ") + name);
}

} // namespace pavonel
