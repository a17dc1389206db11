#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"

#include "Core/CalendarText.h"
#include "Core/Characters.h"
#include "Core/ClockText.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Visuals.h"

#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <memory>

namespace pavonel {

namespace {

constexpr int lineHeight = 36;
constexpr int air = 9;                                  // above and below the lines
constexpr int gap = 8;                                  // beside the time
constexpr int side = CardRow::margin - FocusRing::room; // of the controls, which have that room around them

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

/// The record as the row shows it. Looking it up costs the more, the more of them there are.
struct Record {
    ValueBinding<PlannedBreak> kept;
    PlannedBreak shown = kept.get();
};
using RecordPointer = std::shared_ptr<Record>;

template <class T> ValueBinding<T> partOf(const RecordPointer &record, T PlannedBreak::*part) {
    return {[record, part] { return record->shown.*part; },
            [record, part](const T &value) {
                record->shown = record->kept.get();
                record->shown.*part = value;
                record->kept.set(record->shown);
            }};
}

/// Of the numbers from 0.
PopUpButton *numberPicker(const QString &name, const ValueBinding<int> &number, int count,
                          QString (*text)(int)) {
    QStringList choices;
    for (int value = 0; value < count; ++value)
        choices.append(text(value));
    return boundPicker(
        name,
        {[number, text] { return text(number.get()); },
         [number, choices](const QString &choice) { number.set(static_cast<int>(choices.indexOf(choice))); }},
        choices);
}

Button *weekdayToggle(int weekday, const ValueBinding<std::set<int>> &chosen) {
    auto *toggle = new Button(weekdayName(weekday).left(1), ButtonRole::disc);
    toggle->setCheckable(true);
    toggle->setAccessibleName(weekdayName(weekday));
    toggle->setToolTip(weekdayName(weekday));
    QObject::connect(toggle, &Button::toggled, toggle, [weekday, chosen](bool on) {
        std::set<int> weekdays = chosen.get();
        weekdays.erase(weekday);
        if (on)
            weekdays.insert(weekday);
        chosen.set(weekdays);
    });
    follow(*toggle, [toggle, weekday, get = chosen.get] {
        const QSignalBlocker silence(toggle);
        toggle->setChecked(get().contains(weekday));
    });
    return toggle;
}

QHBoxLayout *timeHalf(const RecordPointer &planned, Button *remove) {
    auto *time = half(CardRow::margin - besideSymbol());
    time->addWidget(numberPicker(QStringLiteral("Hour"), partOf(planned, &PlannedBreak::hour), 24, hourText));
    time->addWidget(new Text(QStringLiteral(":"), Text::Style::label));
    time->addWidget(
        numberPicker(QStringLiteral("Minute"), partOf(planned, &PlannedBreak::minute), 60, minuteText));
    time->addSpacing(gap);
    time->addStretch();
    time->addWidget(boundSwitch(QStringLiteral("Enabled"), partOf(planned, &PlannedBreak::enabled)));
    time->addSpacing(gap / 2);
    time->addWidget(remove);
    return time;
}

QHBoxLayout *daysHalf(const RecordPointer &planned) {
    auto *days = half();
    for (const int weekday : weekdaysInOrder())
        days->addWidget(weekdayToggle(weekday, partOf(planned, &PlannedBreak::weekdays)));
    days->addStretch();
    return days;
}

QHBoxLayout *lengthHalf(const RecordPointer &planned) {
    auto *length = half(side, 6);
    length->addStretch();
    length->addWidget(new Text(QStringLiteral("For"), Text::Style::secondary));
    length->addWidget(boundStepper(QStringLiteral("Duration"), partOf(planned, &PlannedBreak::duration),
                                   {300, 14400}, 300, humanText));
    return length;
}

} // namespace

PlannedRow::PlannedRow(const ValueBinding<PlannedBreak> &planned, std::function<void()> remove) {
    setAccessibleRole(*this, QAccessible::Grouping);
    const auto record = std::make_shared<Record>(Record{planned});
    auto *button = Button::ofSymbol(QStringLiteral("xmark.circle.fill"), {});
    follow(*this, [this, button, record] { // before the controls do
        constexpr qsizetype longest = 100;
        record->shown = record->kept.get();
        const QString name = beginning(record->shown.label, longest).simplified();
        setAccessibleName(name.isEmpty() ? QStringLiteral("Planned break") : name);
        button->setAccessibleName(QStringLiteral("Remove ") + name);
    });
    label_ =
        boundField(QStringLiteral("Label"), partOf(record, &PlannedBreak::label), QStringLiteral("Label"));
    head_ = half();
    head_->addWidget(label_);
    time_ = timeHalf(record, button);
    days_ = daysHalf(record);
    length_ = lengthHalf(record);
    auto *lines = column();
    lines->addLayout(first_ = pairOf(head_, time_));
    lines->addLayout(second_ = pairOf(days_, length_));
    layout()->setContentsMargins(side, air, 0, air);
    layout()->setSizeConstraint(QLayout::SetNoConstraint);
    static_cast<QHBoxLayout *>(layout())->addLayout(lines);
    connect(button, &Button::clicked, this, std::move(remove), Qt::QueuedConnection); // this row goes with it
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
    return {side + widest, heightAt(width())};
}

/// The controls keep their order, on however many lines they stand.
void PlannedRow::resizeEvent(QResizeEvent *) {
    const bool wide = isWide(width());
    for (QBoxLayout *pair : {first_, second_}) {
        pair->setDirection(wide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
        pair->setSpacing(wide ? gap : 0);
    }
    head_->setContentsMargins(0, 0, wide ? 0 : side, 0);
    layout()->activate();
}

} // namespace pavonel
