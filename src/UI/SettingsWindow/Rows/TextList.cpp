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

class TextList final : public QWidget {
public:
    TextList(Visuals &visuals, const ValueBinding<QStringList> &texts, const TextListOptions &options)
        : texts_(texts), options_(options), empty_(new CardRow(visuals)), undo_(new UndoRow(visuals)) {
        constexpr int rowHeight = 42;
        rows_ = new RowList(visuals, visuals.lineHeight(rowHeight), RowList::Lines::first,
                            [this, &visuals](const QString &key) { return row(visuals, key); });
        empty_->add(new Text(visuals, options.whenEmpty, Text::Style::secondary));
        auto *lines = column(this);
        lines->addWidget(empty_);
        lines->addWidget(rows_);
        lines->addWidget(undo_);
        follow(*this, [this] { refresh(); });
    }

private:
    void refresh() {
        const QStringList texts = texts_.get();
        rows_->setKeys(keysOf(texts));
        empty_->setVisible(texts.isEmpty() && !options_.whenEmpty.isEmpty());
        showInPlace(*this, !texts.isEmpty() || !options_.whenEmpty.isEmpty() || !undo_->isHidden());
    }

    QWidget *row(Visuals &visuals, const QString &key) {
        std::function<void(const QString &)> edit;
        if (options_.entries == TextListOptions::Entries::editable)
            edit = [this, key](const QString &text) {
                change(key, [&](QStringList &texts, qsizetype place) { texts[place] = text; });
            };
        return new ListRow(
            visuals, entryOf(key), [this, key] { remove(key); }, edit);
    }

    /// Nothing where the entry is gone.
    void change(const QString &key, const std::function<void(QStringList &, qsizetype place)> &edit) {
        QStringList texts = texts_.get();
        const qsizetype place = keysOf(texts).indexOf(key);
        if (place < 0)
            return;
        edit(texts, place);
        texts_.set(texts);
    }

    void remove(const QString &key) {
        change(key, [&](QStringList &texts, qsizetype place) {
            undo_->offer(entryOf(key).text,
                         [this, text = texts.takeAt(place), place] { bringBack(text, place); });
        });
    }

    void bringBack(const QString &text, qsizetype place) {
        QStringList texts = texts_.get();
        texts.insert(std::min(place, texts.size()), text);
        texts_.set(texts);
    }

    ListRow::Entry entryOf(const QString &key) const {
        return options_.entry(key.left(key.lastIndexOf(mark)));
    }

    ValueBinding<QStringList> texts_;
    TextListOptions options_;
    CardRow *empty_;
    RowList *rows_;
    UndoRow *undo_;
};

} // namespace

Element textList(const ValueBinding<QStringList> &texts, const TextListOptions &options) {
    return [=](Visuals &visuals) { return new TextList(visuals, texts, options); };
}

} // namespace pavonel
