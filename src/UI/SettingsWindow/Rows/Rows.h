#pragma once

#include "Core/Settings.h"
#include "Platform/Service.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/ListRow.h"
#include "UI/Controls/Stepper.h"
#include "UI/Controls/Text.h"

#include <QStringList>
#include <QWidget>

#include <functional>

class QLineEdit;

/// What pages and cards are made of: new widgets, which whoever lays them out owns. They write through at
/// once and follow changes from elsewhere.
namespace pavonel {

class PopUpButton;
class Switch;

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

/// Keeps a widget of a page true to the settings: `refresh` is called now, and from the loop after any
/// setting changed.
class Follower final : public QObject {
public:
    Follower(QWidget &widget, std::function<void()> refresh)
        : QObject(&widget), refresh_(std::move(refresh)) {
        refresh_();
    }

    void refresh() const { refresh_(); }

private:
    std::function<void()> refresh_;
};

inline void follow(QWidget &widget, std::function<void()> refresh) {
    new Follower(widget, std::move(refresh));
}

/// Lets a widget be seen or not. One that has not come to its place yet is seen as soon as it is there; to
/// show it before would open a window of its own.
inline void showInPlace(QWidget &widget, bool seen) {
    if (!seen || widget.parentWidget())
        widget.setVisible(seen);
}

/// Controls that show and write such a value; `name` is what a screen reader says.
Switch *boundSwitch(const QString &name, const ValueBinding<bool> &isOn);
Stepper *boundStepper(const QString &name, const ValueBinding<double> &value, Range range, double step,
                      const Stepper::Wording &wording);
PopUpButton *boundPicker(const QString &name, const ValueBinding<QString> &selection,
                         const QStringList &choices);
QLineEdit *boundField(const QString &name, const ValueBinding<QString> &text, const QString &prompt = {});

/// Yields a sentence that can change; empty for nothing.
using TextSource = std::function<QString()>;

/// A rounded panel with a bold title, a subtitle under it, then the content.
QWidget *card(const QString &title, const QString &subtitle, const QWidgetList &content);

/// A small sentence in a card, under the row before it; takes no room while it is empty.
QWidget *cardNote(const TextSource &text, Text::Style style = Text::Style::note);
QWidget *cardNote(const QString &sentence);

/// A sentence on the page itself, below a card; takes no room while it is empty.
QWidget *pageNote(const TextSource &text, Text::Style style = Text::Style::secondary);
QWidget *pageNote(const QString &sentence, Text::Style style = Text::Style::secondary);

/// Why the setting above it has no effect on this desktop; nothing where it has.
QWidget *limitationNote(const Service &service);

/// A row that can be used only while something else is as it must be, and is pale otherwise.
QWidget *enabledWhile(const std::function<bool()> &holds, QWidget *row);

QWidget *switchRow(const QString &label, const ValueBinding<bool> &isOn, const QString &note = {});

/// A value that no clock can show is shown bounded.
QWidget *stepRow(const QString &label, const ValueBinding<double> &seconds, Range range, double step,
                 const QString &suffix = {});

/// `before` stands before the choice, where something does.
QWidget *pickerRow(const QString &label, const ValueBinding<QString> &selection, const QStringList &choices,
                   QWidget *before = nullptr);

QWidget *labeledField(const QString &label, const ValueBinding<QString> &text, const QString &prompt = {});

/// A field to write an entry in and a button, which a screen reader calls `button`, that adds it, as Return
/// does. The entry comes without blanks around it; what is only blanks is not added.
QWidget *addField(const QString &prompt, const QString &button,
                  const std::function<void(const QString &)> &add, QWidget *before = nullptr);

/// A button at the left edge of the column.
QWidget *buttonRow(const QString &label, const std::function<void()> &action, const QString &symbol = {},
                   ButtonRole role = ButtonRole::plain);

/// How a list of texts is shown.
struct TextListOptions {
    QString whenEmpty = {}; ///< In place of the rows.
    /// How an entry is shown; as its text unless told otherwise.
    std::function<ListRow::Entry(const QString &)> entry = [](const QString &text) {
        return ListRow::Entry{text};
    };
    enum class Entries { fixed, editable };
    Entries entries = Entries::fixed;
};

/// The entries of a list of texts, one a row with a button that removes it, which can be undone. The same
/// text may be there twice.
QWidget *textList(const ValueBinding<QStringList> &texts, const TextListOptions &options);

/// A part of a page that is another one in every state of what it watches: made anew, from the loop, after
/// each change. The keyboard stays in it, and what it says anew is announced. `spacing` is in points, between
/// its widgets.
QWidget *dynamicSection(const std::vector<Observable *> &watched, const std::function<QWidgetList()> &content,
                        int spacing = 0);

} // namespace pavonel
