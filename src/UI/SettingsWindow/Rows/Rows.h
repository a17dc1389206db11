#pragma once

#include "Platform/Service.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Rows/Element.h"
#include "UI/SettingsWindow/Rows/ValueBinding.h"

#include <QStringList>

/// The rows that cards are made of. Each is a plain description; `make` builds its widget, which writes
/// through at once and follows changes from elsewhere.
namespace pavonel {

struct SwitchRow {
    QString label;
    ValueBinding<bool> isOn;
    QString note = {};

    QWidget *make(Visuals &visuals) const;
};

struct StepRow {
    QString label;
    ValueBinding<double> value; ///< Seconds; a value that no clock can show is shown bounded.
    Range range;
    double step;
    QString suffix = {};

    QWidget *make(Visuals &visuals) const;
};

/// A row that can be used only while something else is as it must be, and is pale otherwise.
struct EnabledWhile {
    std::function<bool()> holds;
    Element row;

    QWidget *make(Visuals &visuals) const;
};

struct PickerRow {
    QString label;
    ValueBinding<QString> selection;
    QStringList choices;
    std::function<QWidget *(Visuals &)> before = {}; ///< What stands before the choice, where something does.

    QWidget *make(Visuals &visuals) const;
};

struct LabeledField {
    QString label;
    ValueBinding<QString> text;
    QString prompt = {};

    QWidget *make(Visuals &visuals) const;
};

/// Yields a sentence that can change; empty for nothing.
using TextSource = std::function<QString()>;

/// A small sentence in a card, under the row before it; takes no room while it is empty.
struct CardNote {
    CardNote(TextSource source) : text(std::move(source)) {}
    CardNote(const QString &sentence) : text([sentence] { return sentence; }) {}

    CardNote(TextSource source, Text::Style inStyle) : text(std::move(source)), style(inStyle) {}

    TextSource text;
    Text::Style style = Text::Style::note;

    QWidget *make(Visuals &visuals) const;
};

/// A sentence on the page itself, below a card; takes no room while it is empty.
struct PageNote {
    PageNote(TextSource source) : text(std::move(source)) {}
    PageNote(const QString &sentence, Text::Style inStyle = Text::Style::secondary)
        : text([sentence] { return sentence; }), style(inStyle) {}

    TextSource text;
    Text::Style style = Text::Style::secondary;

    QWidget *make(Visuals &visuals) const;
};

/// A button at the left edge of the column.
struct ButtonRow {
    QString label;
    std::function<void()> action;
    QString symbol = {};
    Button::Role role = Button::Role::plain;

    QWidget *make(Visuals &visuals) const;
};

/// Why the setting above it has no effect on this desktop; nothing where it has.
inline CardNote limitationNote(const Service &service) {
    return CardNote([&service] { return service.limitation(); });
}

} // namespace pavonel
