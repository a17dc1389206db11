#pragma once

#include "Core/Settings.h"
#include "Platform/Service.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Rows/Element.h"

#include <QStringList>

/// What pages and cards are made of. Each is a plain description; `make` builds its widget, which writes
/// through at once and follows changes from elsewhere.
namespace pavonel {

/// A value that a row shows and writes, but that is kept elsewhere; as a rule a setting.
template <class T> struct ValueBinding {
    ValueBinding(Setting<T> &setting)
        : get([&setting] { return setting.get(); }), set([&setting](const T &value) { setting = value; }) {}

    /// Both must hold for as long as the row is shown.
    ValueBinding(std::function<T()> getter, std::function<void(const T &)> setter)
        : get(std::move(getter)), set(std::move(setter)) {}

    std::function<T()> get;
    std::function<void(const T &)> set;
};

/// A rounded panel with a bold title, a subtitle under it, then the content.
struct Card {
    QString title;
    QString subtitle;
    Elements content;

    QWidget *make(Visuals &visuals) const;
};

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

/// A row with a field to write an entry in and a button that adds it, as Return does. The entry comes without
/// blanks around it; what is only blanks is not added.
struct AddField {
    QString prompt;
    QString button; ///< What a screen reader calls the button.
    std::function<void(const QString &)> add;
    std::function<QWidget *(Visuals &)> before = {}; ///< What stands before the field, where something does.

    QWidget *make(Visuals &visuals) const;
};

/// The entries of a list of texts, one a row with a button that removes it, which can be undone. The same
/// text may be there twice.
struct TextList {
    ValueBinding<QStringList> texts;
    QString whenEmpty = {}; ///< Shown in place of the rows.
    /// How an entry is shown; as its text unless told otherwise.
    std::function<ListRow::Entry(const QString &)> entry = [](const QString &text) {
        return ListRow::Entry{text};
    };
    enum class Entries { fixed, editable };
    Entries entries = Entries::fixed;

    QWidget *make(Visuals &visuals) const;
};

/// Yields a sentence that can change; empty for nothing.
using TextSource = std::function<QString()>;

/// A small sentence in a card, under the row before it; takes no room while it is empty.
struct CardNote {
    CardNote(TextSource source, Text::Style inStyle = Text::Style::note)
        : text(std::move(source)), style(inStyle) {}
    CardNote(const QString &sentence) : text([sentence] { return sentence; }) {}

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

/// A part of a page that is another one in every state of what it watches: made anew, from the loop, after
/// each change. The keyboard stays in it, and what it says anew is announced.
struct DynamicSection {
    std::vector<Observable *> watched;
    std::function<Elements()> content;
    int spacing = 0; ///< Points between the elements.

    QWidget *make(Visuals &visuals) const;
};

/// Why the setting above it has no effect on this desktop; nothing where it has.
inline CardNote limitationNote(const Service &service) {
    return CardNote([&service] { return service.limitation(); });
}

} // namespace pavonel
