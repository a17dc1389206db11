#include "Core/Settings.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Planned/PlannedRow.h"
#include "UI/SettingsWindow/Rows/EditedList.h"
#include "UI/SettingsWindow/Rows/RowList.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

/// The planned breaks to edit, in the user's order, below a line that tells how many are active. `added` is
/// set when the user adds one, to which the keyboard then goes.
class PlannedList final : public QWidget {
public:
    PlannedList(Setting<PlannedBreaks> &breaks, std::shared_ptr<bool> added)
        : current_(breaks),
          breaks_(breaks, [](const PlannedBreak &planned) { return planned.id.toString(); }),
          added_(std::move(added)), state_(new Text({}, Text::Style::secondary)),
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

private:
    void refresh() {
        const PlannedBreaks &breaks = current_;
        const auto active = std::ranges::count_if(breaks, &PlannedBreak::enabled);
        state_->setText(breaks.empty() ? u"No planned breaks yet"_s : u"%1 active"_s.arg(active));
        rows_->setKeys(breaks_.keys());
        if (std::exchange(*added_, false) && !breaks.empty())
            static_cast<PlannedRow &>(rows_->reveal(breaks.size() - 1)).takeKeyboard();
    }

    QWidget *row(const QString &key) {
        const ValueBinding<PlannedBreak> planned = breaks_.entry(key);
        return new PlannedRow(planned,
                              [this, key, planned] { breaks_.remove(key, *undo_, planned.get().label); });
    }

    const Setting<PlannedBreaks> &current_;
    EditedList<PlannedBreaks> breaks_;
    std::shared_ptr<bool> added_;
    Text *state_;
    RowList *rows_;
    UndoRow *undo_;
};

} // namespace

QWidgetList plannedPage(PageContext &context) {
    Settings &settings = context.settings;
    const auto added = std::make_shared<bool>(false);
    const auto add = [&settings, added] {
        PlannedBreaks breaks = settings.plannedBreaks;
        breaks.emplace_back();
        settings.plannedBreaks = std::move(breaks);
        *added = true;
    };
    auto *list = new PlannedList(settings.plannedBreaks, added);
    return {
        card(u"Your schedule"_s, u"Planned breaks still wait for meetings, calls and focus apps"_s, {list}),
        buttonRow(u"Add planned break"_s, add, u"plus"_s),
    };
}

} // namespace pavonel
