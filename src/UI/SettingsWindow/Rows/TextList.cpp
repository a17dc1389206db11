#include "UI/Controls/Layouts.h"
#include "UI/SettingsWindow/Rows/EditedList.h"
#include "UI/SettingsWindow/Rows/RowList.h"
#include "UI/Style/Visuals.h"

namespace pavonel {

namespace {

class TextList final : public QWidget {
public:
    TextList(const ValueBinding<QStringList> &texts, const TextListOptions &options)
        : texts_(texts, [](const QString &text) { return text; }), options_(options), empty_(new CardRow),
          undo_(new UndoRow) {
        constexpr int rowHeight = 42;
        rows_ = new RowList(visuals().lineHeight(rowHeight), [this](const QString &key) { return row(key); });
        empty_->add(new Text(options.whenEmpty, Text::Style::secondary));
        auto *lines = column(this);
        lines->addWidget(empty_);
        lines->addWidget(rows_);
        lines->addWidget(undo_);
        follow(*this, [this] { refresh(); });
    }

private:
    void refresh() {
        const QStringList keys = texts_.keys();
        rows_->setKeys(keys);
        empty_->setVisible(keys.isEmpty() && !options_.whenEmpty.isEmpty());
        showInPlace(*this, !keys.isEmpty() || !options_.whenEmpty.isEmpty() || !undo_->isHidden());
    }

    QWidget *row(const QString &key) {
        const ListRow::Entry entry = options_.entry(texts_.identityOf(key));
        std::function<void(const QString &)> edit;
        if (options_.entries == TextListOptions::Entries::editable)
            edit = texts_.entry(key).set;
        return new ListRow(
            entry, [this, key, name = entry.text] { texts_.remove(key, *undo_, name); }, edit);
    }

    EditedList<QStringList> texts_;
    TextListOptions options_;
    CardRow *empty_;
    RowList *rows_;
    UndoRow *undo_;
};

} // namespace

QWidget *textList(const ValueBinding<QStringList> &texts, const TextListOptions &options) {
    return new TextList(texts, options);
}

} // namespace pavonel
