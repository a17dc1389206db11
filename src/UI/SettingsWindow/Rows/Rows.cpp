#include "UI/SettingsWindow/Rows/Rows.h"

#include "Core/ClockText.h"
#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/PopUpButton.h"
#include "UI/Controls/Switch.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int cardShadow = 1; // points below the body

class CardWidget final : public QWidget {
public:
    CardWidget(Visuals &visuals, const Card &card) : visuals_(visuals) {
        setAccessibleRole(*this, QAccessible::Grouping);
        setAccessibleName(card.title);
        setAccessibleDescription(card.subtitle);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        constexpr double radius = 12;
        QPainter painter(this);
        const Palette &palette = visuals_.palette();
        const QRectF body = QRectF(rect()).adjusted(FocusRing::room, 0, -FocusRing::room, -cardShadow);
        const bool dark = palette.text.lightnessF() > 0.5F;
        if (!dark)
            drawBody(painter, body.translated(0, cardShadow), radius, QColor(0, 0, 0, 9), Qt::transparent);
        drawBody(painter, body, radius, palette.card, palette.cardOutline);
    }

private:
    Visuals &visuals_;
};

/// Its label turns the switch too.
class SwitchRowWidget final : public CardRow {
public:
    SwitchRowWidget(Visuals &visuals, const SwitchRow &row)
        : CardRow(visuals), switch_(new Switch(visuals, row.label)) {
        addLabel(row.label, row.note);
        switch_->setAccessibleDescription(row.note);
        add(switch_);
        connect(switch_, &Switch::toggled, this, row.isOn.set);
        follow(*switch_, [it = switch_, get = row.isOn.get] { it->setOn(get()); });
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
QWidget *note(Visuals &visuals, const TextSource &source, Text::Style style, const QMargins &margins) {
    auto *place = new QWidget;
    auto *text = new Text(visuals, {}, style);
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

QWidget *Card::make(Visuals &visuals) const {
    constexpr int air = 4; // below the last row
    auto *card = new CardWidget(visuals, *this);
    auto *lines = column(card, {FocusRing::room, 0, FocusRing::room, air + cardShadow});
    if (!title.isEmpty()) {
        auto *head = column(nullptr, {CardRow::margin, 13, CardRow::margin, 9}, 2);
        head->addWidget(new Text(visuals, title, Text::Style::cardTitle));
        if (!subtitle.isEmpty())
            head->addWidget(new Text(visuals, subtitle, Text::Style::cardSubtitle));
        lines->addLayout(head);
    }
    for (const Element &element : content)
        lines->addWidget(element.make(visuals));
    return card;
}

QWidget *SwitchRow::make(Visuals &visuals) const {
    return new SwitchRowWidget(visuals, *this);
}

QWidget *StepRow::make(Visuals &visuals) const {
    const auto wording = [suffix = suffix](double seconds) {
        const QString text = humanText(seconds);
        return suffix.isEmpty() ? text : text + u' ' + suffix;
    };
    auto *row = new CardRow(visuals);
    auto *stepper = new Stepper(label, range, step, wording);
    row->addLabel(label);
    row->add(stepper);
    stepper->onStep = value.set;
    follow(*stepper, [stepper, get = value.get] { stepper->setValue(get()); });
    return row;
}

QWidget *EnabledWhile::make(Visuals &visuals) const {
    QWidget *widget = row.make(visuals);
    follow(*widget, [widget, holds = holds] { widget->setEnabled(holds()); });
    return widget;
}

QWidget *PickerRow::make(Visuals &visuals) const {
    auto *row = new CardRow(visuals);
    auto *button = new PopUpButton(visuals, label, choices);
    row->addLabel(label);
    if (before)
        row->add(before(visuals));
    row->add(button);
    button->onChoice = selection.set;
    follow(*button, [button, get = selection.get] { button->setChoice(get()); });
    return row;
}

QWidget *LabeledField::make(Visuals &visuals) const {
    auto *row = new CardRow(visuals);
    auto *field = lineEdit(label, prompt);
    auto *lines = new QWidget;
    auto *places = layOut<QGridLayout>(lines, {0, 10, 0, 8});
    places->setVerticalSpacing(2);
    places->setColumnMinimumWidth(0, FocusRing::room);
    places->addWidget(new Text(visuals, label, Text::Style::label), 0, 1);
    places->addWidget(field, 1, 0, 1, 2);
    places->setColumnStretch(1, 1);
    row->addOutdented(lines);
    // Not `textEdited`, which keeps silent about what a screen reader writes.
    QObject::connect(field, &QLineEdit::textChanged, row, text.set);
    follow(*field, [field, get = text.get] { showText(*field, get()); });
    return row;
}

QWidget *AddField::make(Visuals &visuals) const {
    auto *row = new CardRow(visuals);
    auto *field = lineEdit(prompt, prompt);
    auto *plus = Button::ofSymbol(QStringLiteral("plus"), button);
    row->layout()->setContentsMargins(CardRow::margin - FocusRing::room, 3,
                                      CardRow::margin - Button::besideSymbol(visuals), 3);
    if (before)
        row->add(before(visuals));
    row->add(field);
    row->add(plus);
    plus->setEnabled(false);
    const auto submit = [field, add = add] {
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

QWidget *CardNote::make(Visuals &visuals) const {
    return note(visuals, text, style, {CardRow::margin, 0, CardRow::margin, 9});
}

QWidget *PageNote::make(Visuals &visuals) const {
    return note(visuals, text, style, {FocusRing::room, 0, FocusRing::room, 0});
}

QWidget *ButtonRow::make(Visuals &) const {
    auto *row = new QWidget;
    auto *button = new Button(label, role, symbol);
    auto *place = line(row);
    place->addWidget(button);
    place->addStretch();
    QObject::connect(button, &Button::clicked, row, action, Qt::QueuedConnection);
    return row;
}

} // namespace pavonel
