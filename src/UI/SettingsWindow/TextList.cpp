#include "UI/SettingsWindow/TextList.h"

#include "UI/Controls/CardRow.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/RowList.h"

#include <QHash>
#include <QVBoxLayout>

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

class TextListWidget final : public QWidget, public Follower {
public:
    TextListWidget(Look &look, const TextList &list) : list_(list) {
        auto *lines = new QVBoxLayout(this);
        lines->setContentsMargins({});
        lines->setSpacing(0);
        empty_ = new CardRow(look);
        empty_->add(new Text(look, list.whenEmpty, Text::Style::secondary));
        lines->addWidget(empty_);
        constexpr int rowHeight = 42;
        rows_ = new RowList(look, look.lineHeight(rowHeight), RowList::Lines::first,
                            [this, &look](const QString &key) { return row(look, key); });
        lines->addWidget(rows_);
        TextListWidget::readAgain();
    }

    void readAgain() override {
        const QStringList texts = list_.texts.get();
        rows_->setKeys(keysOf(texts));
        empty_->setVisible(texts.isEmpty() && !list_.whenEmpty.isEmpty());
        letSee(*this, !texts.isEmpty() || !list_.whenEmpty.isEmpty());
    }

private:
    QWidget *row(Look &look, const QString &key) {
        return new ListRow(look, list_.entry(key.left(key.lastIndexOf(mark))), [this, key] { remove(key); });
    }

    void remove(const QString &key) {
        QStringList texts = list_.texts.get();
        const qsizetype place = keysOf(texts).indexOf(key);
        if (place < 0)
            return;
        texts.removeAt(place);
        list_.texts.set(texts);
    }

    TextList list_;
    CardRow *empty_;
    RowList *rows_;
};

} // namespace

QWidget *TextList::make(Look &look) const {
    return new TextListWidget(look, *this);
}

QStringList withEntry(QStringList list, const QString &text) {
    if (!list.contains(text))
        list.append(text);
    return list;
}

} // namespace pavonel
