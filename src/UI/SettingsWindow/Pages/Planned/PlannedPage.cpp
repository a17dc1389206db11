#include "Core/Settings.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"
#include "UI/SettingsWindow/Rows/EditedList.h"
#include "UI/SettingsWindow/Rows/RowList.h"

#include <algorithm>
#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

/// The planned breaks to edit, in the user's order, below a line that tells how many are active.
class PlannedList final : public QWidget {
public:
    explicit PlannedList(Setting<PlannedBreaks> &breaks)
        : setting_(breaks),
          breaks_(breaks, [](const PlannedBreak &planned) { return planned.id.toString(); }),
          state_(new Text({}, Text::Style::secondary)),
          rows_(new RowList(PlannedRow::heightAt, [this](const QString &key) { return row(key); })),
          undo_(new UndoRow) {
        auto *lines = column(this);
        auto *head = column(nullptr, {CardRow::margin, 3, CardRow::margin, 12});
        head->addWidget(state_);
        lines->addLayout(head);
        lines->addWidget(rows_);
        lines->addWidget(undo_);
        follow(*this, [this] { refresh(); });
    }

    void add() {
        PlannedBreaks breaks = setting_;
        breaks.emplace_back();
        setting_ = std::move(breaks);
        isAdded_ = true;
    }

private:
    void refresh() {
        const PlannedBreaks &breaks = setting_;
        const auto active = std::ranges::count_if(breaks, &PlannedBreak::enabled);
        state_->setText(breaks.empty() ? u"No planned breaks yet"_s : u"%1 active"_s.arg(active));
        rows_->setKeys(breaks_.keys());
        if (std::exchange(isAdded_, false) && !breaks.empty())
            static_cast<PlannedRow &>(rows_->reveal(breaks.size() - 1)).takeKeyboard();
    }

    QWidget *row(const QString &key) {
        const ValueBinding<PlannedBreak> planned = breaks_.entry(key);
        return new PlannedRow(planned,
                              [this, key, planned] { breaks_.remove(key, *undo_, planned.get().label); });
    }

    Setting<PlannedBreaks> &setting_;
    EditedList<PlannedBreaks> breaks_;
    bool isAdded_ = false; ///< By the user just now: the keyboard goes to it.
    Text *state_;
    RowList *rows_;
    UndoRow *undo_;
};

} // namespace

QWidgetList plannedPage(PageContext &context) {
    auto *list = new PlannedList(context.settings.plannedBreaks);
    return {
        card(u"Your schedule"_s, u"Planned breaks still wait for meetings, calls and focus apps"_s, {list}),
        buttonRow(
            u"Add planned break"_s, [list] { list->add(); }, u"plus"_s),
    };
}

} // namespace pavonel
