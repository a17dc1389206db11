#include "UI/Controls/Layouts.h"
#include "UI/SettingsWindow/Rows/RowList.h"
#include "UI/SettingsWindow/Rows/Rows.h"

#include <QHash>

#include <algorithm>

namespace pavonel {

namespace {

/// Tells entries of the same text apart.
constexpr QChar mark = u'\x1f';

QStringList keysOf(const QStringList &texts) {
    QHash<QString, int> seen;
    QStringList keys;
    for (const QString &text : texts)
        keys.append(text + mark + QString::number(seen[text]++));
    return keys;
}

class TextListWidget final : public QWidget {
public:
    TextListWidget(Visuals &visuals, const TextList &list)
        : list_(list), empty_(new CardRow(visuals)), undo_(new UndoRow(visuals)) {
        constexpr int rowHeight = 42;
        rows_ = new RowList(visuals, visuals.lineHeight(rowHeight), RowList::Lines::first,
                            [this, &visuals](const QString &key) { return row(visuals, key); });
        empty_->add(new Text(visuals, list.whenEmpty, Text::Style::secondary));
        auto *lines = column(this);
        lines->addWidget(empty_);
        lines->addWidget(rows_);
        lines->addWidget(undo_);
        follow(*this, [this] { refresh(); });
    }

private:
    void refresh() {
        const QStringList texts = list_.texts.get();
        rows_->setKeys(keysOf(texts));
        empty_->setVisible(texts.isEmpty() && !list_.whenEmpty.isEmpty());
        showInPlace(*this, !texts.isEmpty() || !list_.whenEmpty.isEmpty() || !undo_->isHidden());
    }

    QWidget *row(Visuals &visuals, const QString &key) {
        std::function<void(const QString &)> edit;
        if (list_.entries == TextList::Entries::editable)
            edit = [this, key](const QString &text) {
                change(key, [&](QStringList &texts, qsizetype place) { texts[place] = text; });
            };
        return new ListRow(
            visuals, entryOf(key), [this, key] { remove(key); }, edit);
    }

    /// Nothing where the entry is gone.
    void change(const QString &key, const std::function<void(QStringList &, qsizetype place)> &edit) {
        QStringList texts = list_.texts.get();
        const qsizetype place = keysOf(texts).indexOf(key);
        if (place < 0)
            return;
        edit(texts, place);
        list_.texts.set(texts);
    }

    void remove(const QString &key) {
        change(key, [&](QStringList &texts, qsizetype place) {
            undo_->offer(entryOf(key).text,
                         [this, text = texts.takeAt(place), place] { bringBack(text, place); });
        });
    }

    void bringBack(const QString &text, qsizetype place) {
        QStringList texts = list_.texts.get();
        texts.insert(std::min(place, texts.size()), text);
        list_.texts.set(texts);
    }

    ListRow::Entry entryOf(const QString &key) const { return list_.entry(key.left(key.lastIndexOf(mark))); }

    TextList list_;
    CardRow *empty_;
    RowList *rows_;
    UndoRow *undo_;
};

} // namespace

QWidget *TextList::make(Visuals &visuals) const {
    return new TextListWidget(visuals, *this);
}

} // namespace pavonel
