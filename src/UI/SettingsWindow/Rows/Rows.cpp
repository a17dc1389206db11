#include "UI/SettingsWindow/Rows/Rows.h"

#include "Core/ClockText.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Switch.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int cardShadow = 1; // points below the body

class CardWidget final : public QWidget {
public:
    CardWidget(const QString &title, const QString &subtitle) {
        setAccessibleRole(*this, QAccessible::Grouping);
        setAccessibleName(title);
        setAccessibleDescription(subtitle);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        constexpr double radius = 12;
        QPainter painter(this);
        const Palette &palette = visuals().palette();
        const QRectF body = QRectF(rect()).adjusted(FocusRing::room, 0, -FocusRing::room, -cardShadow);
        const bool dark = palette.text.lightnessF() > 0.5F;
        if (!dark)
            drawBody(painter, body.translated(0, cardShadow), radius, QColor(0, 0, 0, 9), Qt::transparent);
        drawBody(painter, body, radius, palette.card, palette.cardOutline);
    }
};

/// Its label turns the switch too.
class SwitchRowWidget final : public CardRow {
public:
    SwitchRowWidget(const QString &label, const ValueBinding<bool> &isOn, const QString &note)
        : switch_(boundSwitch(label, isOn)) {
        addLabel(label, note);
        switch_->setAccessibleDescription(note);
        add(switch_);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent *event) override {
        if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
            switch_->click();
    }

private:
    Switch *switch_;
};

/// A text that comes and goes.
QWidget *note(const TextSource &source, Text::Style style, const QMargins &margins) {
    auto *place = new QWidget;
    auto *text = new Text({}, style);
    column(place, margins)->addWidget(text);
    follow(*place, [place, text, source] {
        const QString before = text->text();
        text->setText(source());
        showInPlace(*place, !text->text().isEmpty());
        if (text->text() != before && place->isVisible())
            announce(*text);
    });
    return place;
}

} // namespace

Switch *boundSwitch(const QString &name, const ValueBinding<bool> &isOn) {
    auto *control = new Switch(name);
    QObject::connect(control, &Switch::toggled, control, isOn.set);
    follow(*control, [control, get = isOn.get] { control->setOn(get()); });
    return control;
}

Stepper *boundStepper(const QString &name, const ValueBinding<double> &value, Range range, double step,
                      const Stepper::Wording &wording) {
    auto *stepper = new Stepper(name, range, step, wording);
    stepper->onStep = value.set;
    follow(*stepper, [stepper, get = value.get] { stepper->setValue(get()); });
    return stepper;
}

PopUpButton *boundPicker(const QString &name, const ValueBinding<QString> &selection,
                         const QStringList &choices) {
    auto *button = new PopUpButton(name, choices);
    QObject::connect(button, &PopUpButton::textActivated, button, selection.set);
    follow(*button, [button, get = selection.get] { button->setChoice(get()); });
    return button;
}

QLineEdit *boundField(const QString &name, const ValueBinding<QString> &text, const QString &prompt) {
    auto *field = lineEdit(name, prompt);
    // Not `textEdited`, which keeps silent about what a screen reader writes.
    QObject::connect(field, &QLineEdit::textChanged, field, text.set);
    follow(*field, [field, get = text.get] { showText(*field, get()); });
    return field;
}

QWidget *card(const QString &title, const QString &subtitle, const QWidgetList &content) {
    constexpr int air = 4; // below the last row
    auto *card = new CardWidget(title, subtitle);
    auto *lines = column(card, {FocusRing::room, 0, FocusRing::room, air + cardShadow});
    if (!title.isEmpty()) {
        auto *head = column(nullptr, {CardRow::margin, 13, CardRow::margin, 9}, 2);
        head->addWidget(new Text(title, Text::Style::cardTitle));
        if (!subtitle.isEmpty())
            head->addWidget(new Text(subtitle, Text::Style::cardSubtitle));
        lines->addLayout(head);
    }
    for (QWidget *row : content)
        lines->addWidget(row);
    return card;
}

QWidget *cardNote(const TextSource &text, Text::Style style) {
    return note(text, style, {CardRow::margin, 0, CardRow::margin, 9});
}

QWidget *cardNote(const QString &sentence) {
    return cardNote([sentence] { return sentence; });
}

QWidget *pageNote(const TextSource &text, Text::Style style) {
    return note(text, style, {FocusRing::room, 0, FocusRing::room, 0});
}

QWidget *pageNote(const QString &sentence, Text::Style style) {
    return pageNote([sentence] { return sentence; }, style);
}

QWidget *limitationNote(const Service &service) {
    return cardNote([&service] { return service.limitation(); });
}

QWidget *enabledWhile(const std::function<bool()> &holds, QWidget *row) {
    follow(*row, [row, holds] { row->setEnabled(holds()); });
    return row;
}

QWidget *switchRow(const QString &label, const ValueBinding<bool> &isOn, const QString &note) {
    return new SwitchRowWidget(label, isOn, note);
}

QWidget *stepRow(const QString &label, const ValueBinding<double> &seconds, Range range, double step,
                 const QString &suffix) {
    const auto wording = [suffix](double value) {
        const QString text = humanText(value);
        return suffix.isEmpty() ? text : text + u' ' + suffix;
    };
    auto *row = new CardRow;
    row->addLabel(label);
    row->add(boundStepper(label, seconds, range, step, wording));
    return row;
}

QWidget *pickerRow(const QString &label, const ValueBinding<QString> &selection, const QStringList &choices,
                   QWidget *before) {
    auto *row = new CardRow;
    row->addLabel(label);
    if (before)
        row->add(before);
    row->add(boundPicker(label, selection, choices));
    return row;
}

QWidget *labeledField(const QString &label, const ValueBinding<QString> &text, const QString &prompt) {
    auto *row = new CardRow;
    auto *head = line(nullptr, {FocusRing::room, 0, 0, 0});
    head->addWidget(new Text(label, Text::Style::label));
    auto *lines = column(nullptr, {}, 2);
    lines->addLayout(head);
    lines->addWidget(boundField(label, text, prompt));
    constexpr int side = CardRow::margin - FocusRing::room; // the field keeps that room for its ring
    row->layout()->setContentsMargins(side, 10, side, 8);
    static_cast<QBoxLayout *>(row->layout())->addLayout(lines);
    return row;
}

QWidget *addField(const QString &prompt, const QString &button,
                  const std::function<void(const QString &)> &add, QWidget *before) {
    auto *row = new CardRow;
    auto *field = lineEdit(prompt, prompt);
    auto *plus = Button::ofSymbol(QStringLiteral("plus"), button);
    row->layout()->setContentsMargins(CardRow::margin - FocusRing::room, 3, CardRow::margin - besideSymbol(),
                                      3);
    if (before)
        row->add(before);
    row->add(field);
    row->add(plus);
    plus->setEnabled(false);
    const auto submit = [field, add] {
        const QString text = field->text().trimmed();
        field->setText({});
        field->setFocus();
        if (!text.isEmpty())
            add(text);
    };
    QObject::connect(field, &QLineEdit::textChanged, plus,
                     [plus](const QString &text) { plus->setEnabled(!text.trimmed().isEmpty()); });
    QObject::connect(field, &QLineEdit::returnPressed, row, submit);
    QObject::connect(plus, &Button::clicked, row, submit);
    return row;
}

QWidget *buttonRow(const QString &label, const std::function<void()> &action, const QString &symbol,
                   ButtonRole role) {
    auto *row = new QWidget;
    auto *button = new Button(label, role, symbol);
    auto *place = line(row);
    place->addWidget(button);
    place->addStretch();
    QObject::connect(button, &Button::clicked, row, action, Qt::QueuedConnection);
    return row;
}

} // namespace pavonel
