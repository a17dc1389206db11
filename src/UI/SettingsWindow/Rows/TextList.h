#pragma once

#include "UI/Controls/ListRow.h"
#include "UI/SettingsWindow/Rows/Element.h"
#include "UI/SettingsWindow/Rows/ValueBinding.h"

#include <QStringList>

namespace pavonel {

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

/// The list with the text behind it; as it is where the text is there already.
QStringList withEntry(QStringList list, const QString &text);

} // namespace pavonel
