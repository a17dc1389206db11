#include "Core/Settings.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedEditing.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"
#include "UI/SettingsWindow/Rows/Element.h"
#include "UI/SettingsWindow/Rows/RowList.h"
#include "UI/SettingsWindow/Rows/Rows.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

/// The planned breaks to edit, in the user's order, below a line that tells how many are active. `added` is
/// set when the user adds one, to which the keyboard then goes.
class PlannedList final : public QWidget {
public:
    PlannedList(Visuals &visuals, Settings &settings, std::shared_ptr<bool> added)
        : settings_(settings), added_(std::move(added)),
          state_(new Text(visuals, {}, Text::Style::secondary)),
          rows_(new RowList(
              visuals, [&visuals](int width) { return PlannedRow::heightAt(width, visuals); },
              RowList::Lines::all, [this, &visuals](const QString &key) { return row(visuals, key); })) {
        auto *lines = column(this);
        auto *head = column(nullptr, {CardRow::margin, 3, CardRow::margin, 12});
        head->addWidget(state_);
        lines->addLayout(head);
        lines->addWidget(rows_);
        undo_ = new UndoRow(visuals);
        lines->addWidget(undo_);
        follow(*this, [this] { refresh(); });
    }

private:
    void refresh() {
        const PlannedBreaks &breaks = settings_.plannedBreaks;
        state_->setText(breaks.empty() ? QStringLiteral("No planned breaks yet") : activeText(breaks));
        const QStringList keys = plannedKeys(breaks);
        rows_->setKeys(keys);
        for (qsizetype index = 0; index < keys.size(); ++index) {
            if (auto *row = static_cast<PlannedRow *>(rows_->rowAt(static_cast<std::size_t>(index))))
                row->display(breaks[static_cast<std::size_t>(index)]);
        }
        if (std::exchange(*added_, false) && !keys.isEmpty())
            static_cast<PlannedRow &>(rows_->reveal(static_cast<std::size_t>(keys.size()) - 1))
                .takeKeyboard();
    }

    QWidget *row(Visuals &visuals, const QString &key) {
        auto *row = new PlannedRow(
            visuals,
            [this, key](const PlannedRow::Edit &edit) {
                settings_.plannedBreaks = edited(settings_.plannedBreaks, key, edit);
            },
            [this, key] { remove(key); });
        if (const PlannedBreak *planned = plannedBreak(settings_.plannedBreaks, key))
            row->display(*planned);
        return row;
    }

    void remove(const QString &key) {
        const PlannedBreaks before = settings_.plannedBreaks;
        const PlannedBreak *planned = plannedBreak(before, key);
        if (!planned)
            return;
        settings_.plannedBreaks = without(before, key);
        undo_->offer(planned->label, [this, gone = *planned, place = planned - before.data()] {
            PlannedBreaks breaks = settings_.plannedBreaks;
            breaks.insert(breaks.begin() + std::min(place, std::ssize(breaks)), gone);
            settings_.plannedBreaks = std::move(breaks);
        });
    }

    Settings &settings_;
    std::shared_ptr<bool> added_;
    Text *state_;
    RowList *rows_;
    UndoRow *undo_;
};

} // namespace

Elements plannedPage(PageContext &context) {
    Settings &settings = context.settings;
    const auto added = std::make_shared<bool>(false);
    const auto add = [&settings, added] {
        PlannedBreaks breaks = settings.plannedBreaks;
        breaks.emplace_back();
        settings.plannedBreaks = std::move(breaks);
        *added = true;
    };
    const auto list = [&settings, added](Visuals &visuals) {
        return new PlannedList(visuals, settings, added);
    };
    return {
        card(u"Your schedule"_s, u"Planned breaks still wait for meetings, calls and focus apps"_s, {list}),
        buttonRow(u"Add planned break"_s, add, u"plus"_s),
    };
}

} // namespace pavonel
