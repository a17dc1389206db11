#include "UI/SettingsWindow/Rows/TextList.h"

#include "UI/Controls/CardRow.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Rows/RowList.h"
#include "UI/SettingsWindow/Rows/UndoRow.h"

#include <QHash>
#include <QVBoxLayout>

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

class TextListWidget final : public QWidget, public Refreshable {
public:
    TextListWidget(Visuals &visuals, const TextList &list) : list_(list) {
        auto *lines = new QVBoxLayout(this);
        lines->setContentsMargins({});
        lines->setSpacing(0);
        empty_ = new CardRow(visuals);
        empty_->add(new Text(visuals, list.whenEmpty, Text::Style::secondary));
        lines->addWidget(empty_);
        constexpr int rowHeight = 42;
        rows_ = new RowList(visuals, visuals.lineHeight(rowHeight), RowList::Lines::first,
                            [this, &visuals](const QString &key) { return row(visuals, key); });
        lines->addWidget(rows_);
        undo_ = new UndoRow(visuals);
        lines->addWidget(undo_);
        TextListWidget::refresh();
    }

    void refresh() override {
        const QStringList texts = list_.texts.get();
        rows_->setKeys(keysOf(texts));
        empty_->setVisible(texts.isEmpty() && !list_.whenEmpty.isEmpty());
        showInPlace(*this, !texts.isEmpty() || !list_.whenEmpty.isEmpty() || !undo_->isHidden());
    }

private:
    QWidget *row(Visuals &visuals, const QString &key) {
        std::function<void(const QString &)> edit;
        if (list_.entries == TextList::Entries::editable)
            edit = [this, key](const QString &text) { replace(key, text); };
        return new ListRow(
            visuals, entryOf(key), [this, key] { remove(key); }, edit);
    }

    void remove(const QString &key) {
        QStringList texts = list_.texts.get();
        const qsizetype place = keysOf(texts).indexOf(key);
        if (place < 0)
            return;
        const QString text = texts.takeAt(place);
        list_.texts.set(texts);
        undo_->offer(entryOf(key).text, [this, text, place] { bringBack(text, place); });
    }

    void bringBack(const QString &text, qsizetype place) {
        QStringList texts = list_.texts.get();
        texts.insert(std::min(place, texts.size()), text);
        list_.texts.set(texts);
    }

    void replace(const QString &key, const QString &text) {
        QStringList texts = list_.texts.get();
        const qsizetype place = keysOf(texts).indexOf(key);
        if (place < 0)
            return;
        texts[place] = text;
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

QStringList withEntry(QStringList list, const QString &text) {
    if (!list.contains(text))
        list.append(text);
    return list;
}

} // namespace pavonel
