#include "Core/ClockText.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Visuals.h"
#include "UI/Refresher.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Pages.h"
#include "UI/SettingsWindow/Pages/Stats/Tile.h"
#include "UI/SettingsWindow/Pages/Stats/WeekChart.h"
#include "UI/SettingsWindow/Pages/Stats/WeekFigures.h"
#include "UI/SettingsWindow/Rows/Card.h"
#include "UI/SettingsWindow/Rows/Rows.h"

#include <QGridLayout>
#include <QVBoxLayout>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

using Tiles = std::vector<Tile>;

Tiles tilesOf(const WeekFigures &week) {
    return {{QString::number(week.micro), QStringLiteral("Micro breaks")},
            {QString::number(week.long_), QStringLiteral("Long breaks")},
            {QString::number(week.planned), QStringLiteral("Planned")},
            {QString::number(week.skipped), QStringLiteral("Skipped")},
            {humanText(week.screenSeconds), QStringLiteral("Screen time")},
            {humanText(week.breakSeconds), QStringLiteral("On breaks")}};
}

/// The figures of the last seven days and their chart, kept up to date.
class WeekSection final : public QWidget {
public:
    WeekSection(Visuals &visuals, Stats &stats)
        : visuals_(visuals), stats_(stats), chart_(new WeekChart(visuals)),
          refresher_(visuals.loop(), {&stats}, [this] { refresh(); }) {
        auto *lines = new QVBoxLayout(this);
        lines->setContentsMargins(CardRow::margin, 2, CardRow::margin, 10);
        lines->setSpacing(14);
        lines->addWidget(new QWidget);
        lines->addWidget(chart_);
        refresh();
    }

private:
    /// Every second; but what is shown changes once a minute.
    void refresh() {
        const auto week = stats_.lastWeek();
        chart_->setDays(week);
        const Tiles tiles = tilesOf(WeekFigures::of(week));
        QStringList values;
        for (const Tile &tile : tiles)
            values.append(tile.value);
        if (values == shown_)
            return;
        shown_ = values;
        QWidget *grid = gridOf(tiles);
        const std::unique_ptr<QLayoutItem> old(layout()->replaceWidget(layout()->itemAt(0)->widget(), grid));
        delete old->widget();
        grid->lower(); // a screen reader comes to it before the chart
        grid->show();
    }

    QWidget *gridOf(const Tiles &tiles) {
        constexpr int columns = 3;
        auto *grid = new QWidget;
        auto *places = new QGridLayout(grid);
        places->setContentsMargins({});
        places->setSpacing(10);
        for (int index = 0; index < static_cast<int>(tiles.size()); ++index)
            places->addWidget(tiles[static_cast<std::size_t>(index)].make(visuals_), index / columns,
                              index % columns);
        return grid;
    }

    Visuals &visuals_;
    Stats &stats_;
    WeekChart *chart_;
    QStringList shown_;
    Refresher refresher_;
};

/// A button that forgets all statistics at once. For as long as the page is shown it can be undone; what was
/// counted since is kept then.
class ResetRow final : public QWidget {
public:
    explicit ResetRow(Stats &stats)
        : stats_(stats), undo_(new Button(QStringLiteral("Undo"), Button::Role::bare)) {
        auto *line = new QHBoxLayout(this);
        line->setContentsMargins({});
        line->setSpacing(0);
        auto *reset = new Button(QStringLiteral("Reset stats"));
        line->addWidget(reset);
        line->addWidget(undo_);
        line->addStretch();
        undo_->setAccessibleName(QStringLiteral("Undo the reset"));
        undo_->hide();
        connect(reset, &Button::clicked, this, [this] { forget(); });
        connect(undo_, &Button::clicked, this, [this] { bringBack(); });
    }

private:
    void forget() {
        forgotten_ = sum(std::move(forgotten_), stats_.days());
        stats_.setDays({});
        stats_.save();
        undo_->setVisible(!forgotten_.empty());
    }

    void bringBack() {
        stats_.setDays(sum(stats_.days(), std::exchange(forgotten_, {})));
        stats_.save();
        undo_->hide();
    }

    Stats &stats_;
    Button *undo_;
    Days forgotten_;
};

} // namespace

Elements statsPage(PageContext &context) {
    Stats &stats = context.stats;
    const auto week = [&stats](Visuals &visuals) { return new WeekSection(visuals, stats); };
    return {
        Card{u"Last 7 days"_s, {}, {week}},
        [&stats](Visuals &) { return new ResetRow(stats); },
    };
}

} // namespace pavonel
