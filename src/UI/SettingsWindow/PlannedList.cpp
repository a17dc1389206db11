#include "UI/SettingsWindow/PlannedList.h"

#include "Core/Settings.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Piece.h"
#include "UI/SettingsWindow/PlannedEditing.h"
#include "UI/SettingsWindow/PlannedRow.h"
#include "UI/SettingsWindow/RowList.h"

#include <QVBoxLayout>

namespace pavonel {

namespace {

class PlannedListWidget final : public QWidget, public Follower {
public:
    PlannedListWidget(Look &look, Settings &settings)
        : settings_(settings), state_(new Text(look, {}, Text::Style::secondary)),
          rows_(new RowList(look, PlannedRow::rowHeight(look), RowList::Lines::all,
                            [this, &look](const QString &key) { return row(look, key); })) {
        auto *lines = new QVBoxLayout(this);
        lines->setContentsMargins({});
        lines->setSpacing(0);
        auto *head = new QVBoxLayout;
        head->setContentsMargins(CardRow::margin, 3, CardRow::margin, 12);
        head->addWidget(state_);
        lines->addLayout(head);
        lines->addWidget(rows_);
        PlannedListWidget::readAgain();
    }

    void readAgain() override {
        const PlannedBreaks &breaks = settings_.plannedBreaks;
        state_->setText(breaks.empty() ? QStringLiteral("No planned breaks yet") : activeText(breaks));
        const QStringList keys = plannedKeys(breaks);
        rows_->setKeys(keys);
        for (qsizetype index = 0; index < keys.size(); ++index) {
            if (auto *row = static_cast<PlannedRow *>(rows_->rowAt(static_cast<std::size_t>(index))))
                row->display(breaks[static_cast<std::size_t>(index)]);
        }
    }

private:
    QWidget *row(Look &look, const QString &key) {
        auto *row = new PlannedRow(
            look,
            [this, key](const PlannedRow::Edit &edit) {
                settings_.plannedBreaks = edited(settings_.plannedBreaks, key, edit);
            },
            [this, key] { settings_.plannedBreaks = without(settings_.plannedBreaks, key); });
        if (const PlannedBreak *planned = plannedBreak(settings_.plannedBreaks, key))
            row->display(*planned);
        return row;
    }

    Settings &settings_;
    Text *state_;
    RowList *rows_;
};

} // namespace

QWidget *PlannedList::make(Look &look) const {
    return new PlannedListWidget(look, settings);
}

} // namespace pavonel
