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

#include <QGridLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int cardShadow = 1; // points below the body

class CardWidget final : public QWidget {
public:
    CardWidget(Visuals &visuals, const QString &title, const QString &subtitle) : visuals_(visuals) {
        setAccessibleRole(*this, QAccessible::Grouping);
        setAccessibleName(title);
        setAccessibleDescription(subtitle);
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
    SwitchRowWidget(Visuals &visuals, const QString &label, const ValueBinding<bool> &isOn,
                    const QString &note)
        : CardRow(visuals), switch_(new Switch(visuals, label)) {
        addLabel(label, note);
        switch_->setAccessibleDescription(note);
        add(switch_);
        connect(switch_, &Switch::toggled, this, isOn.set);
        follow(*switch_, [it = switch_, get = isOn.get] { it->setOn(get()); });
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
Element note(const TextSource &source, Text::Style style, const QMargins &margins) {
    return [=](Visuals &visuals) {
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
    };
}

TextSource always(const QString &sentence) {
    return [sentence] { return sentence; };
}

} // namespace

Element card(const QString &title, const QString &subtitle, const Elements &content) {
    constexpr int air = 4; // below the last row
    return [=](Visuals &visuals) {
        auto *card = new CardWidget(visuals, title, subtitle);
        auto *lines = column(card, {FocusRing::room, 0, FocusRing::room, air + cardShadow});
        if (!title.isEmpty()) {
            auto *head = column(nullptr, {CardRow::margin, 13, CardRow::margin, 9}, 2);
            head->addWidget(new Text(visuals, title, Text::Style::cardTitle));
            if (!subtitle.isEmpty())
                head->addWidget(new Text(visuals, subtitle, Text::Style::cardSubtitle));
            lines->addLayout(head);
        }
        for (const Element &element : content)
            lines->addWidget(element(visuals));
        return card;
    };
}

Element cardNote(const TextSource &text, Text::Style style) {
    return note(text, style, {CardRow::margin, 0, CardRow::margin, 9});
}

Element cardNote(const QString &sentence) {
    return cardNote(always(sentence));
}

Element pageNote(const TextSource &text, Text::Style style) {
    return note(text, style, {FocusRing::room, 0, FocusRing::room, 0});
}

Element pageNote(const QString &sentence, Text::Style style) {
    return pageNote(always(sentence), style);
}

Element limitationNote(const Service &service) {
    return cardNote([&service] { return service.limitation(); });
}

Element enabledWhile(const std::function<bool()> &holds, const Element &row) {
    return [=](Visuals &visuals) {
        QWidget *widget = row(visuals);
        follow(*widget, [widget, holds] { widget->setEnabled(holds()); });
        return widget;
    };
}

Element switchRow(const QString &label, const ValueBinding<bool> &isOn, const QString &note) {
    return [=](Visuals &visuals) { return new SwitchRowWidget(visuals, label, isOn, note); };
}

Element stepRow(const QString &label, const ValueBinding<double> &seconds, Range range, double step,
                const QString &suffix) {
    const auto wording = [suffix](double value) {
        const QString text = humanText(value);
        return suffix.isEmpty() ? text : text + u' ' + suffix;
    };
    return [=](Visuals &visuals) {
        auto *row = new CardRow(visuals);
        auto *stepper = new Stepper(label, range, step, wording);
        row->addLabel(label);
        row->add(stepper);
        stepper->onStep = seconds.set;
        follow(*stepper, [stepper, get = seconds.get] { stepper->setValue(get()); });
        return row;
    };
}

Element pickerRow(const QString &label, const ValueBinding<QString> &selection, const QStringList &choices,
                  const Element &before) {
    return [=](Visuals &visuals) {
        auto *row = new CardRow(visuals);
        auto *button = new PopUpButton(visuals, label, choices);
        row->addLabel(label);
        if (before)
            row->add(before(visuals));
        row->add(button);
        button->onChoice = selection.set;
        follow(*button, [button, get = selection.get] { button->setChoice(get()); });
        return row;
    };
}

Element labeledField(const QString &label, const ValueBinding<QString> &text, const QString &prompt) {
    return [=](Visuals &visuals) {
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
    };
}

Element addField(const QString &prompt, const QString &button,
                 const std::function<void(const QString &)> &add, const Element &before) {
    return [=](Visuals &visuals) {
        auto *row = new CardRow(visuals);
        auto *field = lineEdit(prompt, prompt);
        auto *plus = Button::ofSymbol(QStringLiteral("plus"), button);
        row->layout()->setContentsMargins(CardRow::margin - FocusRing::room, 3,
                                          CardRow::margin - besideSymbol(visuals), 3);
        if (before)
            row->add(before(visuals));
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
    };
}

Element buttonRow(const QString &label, const std::function<void()> &action, const QString &symbol,
                  ButtonRole role) {
    return [=](Visuals &) {
        auto *row = new QWidget;
        auto *button = new Button(label, role, symbol);
        auto *place = line(row);
        place->addWidget(button);
        place->addStretch();
        QObject::connect(button, &Button::clicked, row, action, Qt::QueuedConnection);
        return row;
    };
}

} // namespace pavonel
