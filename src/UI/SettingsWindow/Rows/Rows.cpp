#include "UI/SettingsWindow/Rows/Rows.h"

#include "Core/ClockText.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Rows/StepValue.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace pavonel {

namespace {

class SwitchRowWidget final : public CardRow, public Refreshable {
public:
    SwitchRowWidget(Visuals &visuals, const SwitchRow &row) : CardRow(visuals), isOn_(row.isOn) {
        addLabel(row.label, row.note);
        switch_ = new Switch(visuals, row.label);
        switch_->setAccessibleDescription(row.note);
        add(switch_);
        connect(switch_, &Switch::toggled, this, [this](bool on) { isOn_.set(on); });
        SwitchRowWidget::refresh();
    }

    void refresh() override { switch_->setOn(isOn_.get()); }

protected:
    void mousePressEvent(QMouseEvent *event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent *event) override {
        if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
            switch_->click();
    }

private:
    ValueBinding<bool> isOn_;
    Switch *switch_;
};

class StepRowWidget final : public CardRow, public Refreshable {
public:
    StepRowWidget(Visuals &visuals, const StepRow &row) : CardRow(visuals), value_(row.value) {
        addLabel(row.label);
        const auto wording = [suffix = row.suffix](double seconds) {
            const QString text = humanText(seconds);
            return suffix.isEmpty() ? text : text + u' ' + suffix;
        };
        auto *shown = new StepValue(visuals, wording);
        stepper_ = new Stepper(visuals, row.label, row.range, row.step, wording);
        add(shown);
        add(stepper_);
        stepper_->onStep = [this](double value) { value_.set(value); };
        stepper_->onChange = [shown](double value) { shown->setValue(value); };
        shown->setValue(stepper_->value());
        StepRowWidget::refresh();
    }

    void refresh() override { stepper_->setValue(value_.get()); }

private:
    ValueBinding<double> value_;
    Stepper *stepper_;
};

class PickerRowWidget final : public CardRow, public Refreshable {
public:
    PickerRowWidget(Visuals &visuals, const PickerRow &row) : CardRow(visuals), selection_(row.selection) {
        addLabel(row.label);
        button_ = new PopUpButton(visuals, row.label, row.choices);
        if (row.before)
            add(row.before(visuals));
        add(button_);
        button_->onChoice = [this](const QString &choice) { selection_.set(choice); };
        PickerRowWidget::refresh();
    }

    void refresh() override { button_->setChoice(selection_.get()); }

private:
    ValueBinding<QString> selection_;
    PopUpButton *button_;
};

class LabeledFieldWidget final : public CardRow, public Refreshable {
public:
    LabeledFieldWidget(Visuals &visuals, const LabeledField &row) : CardRow(visuals), text_(row.text) {
        auto *lines = new QWidget;
        auto *column = new QGridLayout(lines);
        column->setContentsMargins(0, 10, 0, 8);
        column->setSpacing(0);
        column->setVerticalSpacing(2);
        column->setColumnMinimumWidth(0, FocusRing::room);
        column->addWidget(new Text(visuals, row.label, Text::Style::label), 0, 1);
        field_ = lineEdit(row.label, row.prompt);
        column->addWidget(field_, 1, 0, 1, 2);
        column->setColumnStretch(1, 1);
        addOutdented(lines);
        // Not `textEdited`, which keeps silent about what a screen reader writes.
        connect(field_, &QLineEdit::textChanged, this, [this](const QString &text) { text_.set(text); });
        LabeledFieldWidget::refresh();
    }

    void refresh() override { showText(*field_, text_.get()); }

private:
    ValueBinding<QString> text_;
    QLineEdit *field_;
};

/// Never seen itself: it lets the row that it lies in be used or not.
class EnabledState final : public QWidget, public Refreshable {
public:
    EnabledState(QWidget &row, std::function<bool()> holds) : QWidget(&row), holds_(std::move(holds)) {
        hide();
        EnabledState::refresh();
    }

    void refresh() override { parentWidget()->setEnabled(holds_()); }

private:
    std::function<bool()> holds_;
};

/// A text that comes and goes.
class NoteWidget final : public QWidget, public Refreshable {
public:
    NoteWidget(Visuals &visuals, TextSource source, Text::Style style, const QMargins &margins)
        : source_(std::move(source)), text_(new Text(visuals, {}, style)) {
        auto *lines = new QVBoxLayout(this);
        lines->setContentsMargins(margins);
        lines->addWidget(text_);
        NoteWidget::refresh();
    }

    void refresh() override {
        const QString before = text_->text();
        text_->setText(source_());
        showInPlace(*this, !text_->text().isEmpty());
        if (text_->text() != before && isVisible())
            announce(*text_);
    }

private:
    TextSource source_;
    Text *text_;
};

} // namespace

QWidget *SwitchRow::make(Visuals &visuals) const {
    return new SwitchRowWidget(visuals, *this);
}

QWidget *StepRow::make(Visuals &visuals) const {
    return new StepRowWidget(visuals, *this);
}

QWidget *EnabledWhile::make(Visuals &visuals) const {
    QWidget *widget = row.make(visuals);
    new EnabledState(*widget, holds);
    return widget;
}

QWidget *PickerRow::make(Visuals &visuals) const {
    return new PickerRowWidget(visuals, *this);
}

QWidget *LabeledField::make(Visuals &visuals) const {
    return new LabeledFieldWidget(visuals, *this);
}

QWidget *CardNote::make(Visuals &visuals) const {
    return new NoteWidget(visuals, text, style, {CardRow::margin, 0, CardRow::margin, 9});
}

QWidget *PageNote::make(Visuals &visuals) const {
    return new NoteWidget(visuals, text, style, {FocusRing::room, 0, FocusRing::room, 0});
}

QWidget *ButtonRow::make(Visuals &) const {
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins({});
    auto *button = new Button(label, role, symbol);
    line->addWidget(button);
    line->addStretch();
    QObject::connect(button, &Button::clicked, row, action, Qt::QueuedConnection);
    return row;
}

} // namespace pavonel
