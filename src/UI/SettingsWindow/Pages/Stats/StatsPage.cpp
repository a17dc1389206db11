#include "Core/ClockText.h"
#include "Core/DaySums.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/Layouts.h"
#include "UI/Fonts.h"
#include "UI/Refresher.h"
#include "UI/SettingsWindow/Page.h"
#include "UI/SettingsWindow/Pages/Stats/WeekChart.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QGridLayout>
#include <QPainter>

#include <algorithm>
#include <array>
#include <memory>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

constexpr int tilePadding = 12;
constexpr double tileRadius = 10;
constexpr int underNumber = 2;

/// A large number with a caption.
class Tile final : public QWidget {
public:
    explicit Tile(const QString &caption) : caption_(caption) {
        setAccessibleRole(*this, QAccessible::StaticText);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    void setValue(const QString &value) {
        if (value == value_)
            return;
        value_ = value;
        setAccessibleName(caption_ + QStringLiteral(": ") + value);
        update();
    }

    QSize sizeHint() const override {
        return {120, 2 * tilePadding + underNumber + QFontMetrics(numberFont()).height() +
                         QFontMetrics(captionFont()).height()};
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        drawBody(painter, rect(), tileRadius, visuals().palette().window, Qt::transparent);
        const QFont number = numberFont();
        const QFontMetricsF metrics(number, this);
        painter.setFont(number);
        painter.setPen(visuals().palette().text);
        drawNumber(painter, tilePadding + metrics.ascent(), fonts::tabularWidth(metrics, value_));
        painter.setFont(captionFont());
        painter.setPen(visuals().palette().secondaryText);
        const QRectF place(tilePadding, tilePadding + metrics.height() + underNumber,
                           width() - 2 * tilePadding, height());
        painter.drawText(
            place, Qt::AlignLeft | Qt::AlignTop,
            QFontMetricsF(captionFont(), this).elidedText(caption_, Qt::ElideRight, place.width()));
    }

private:
    /// A long one gets smaller.
    void drawNumber(QPainter &painter, double baseline, double numberWidth) const {
        const double shrink = std::min(1.0, (width() - 2 * tilePadding) / numberWidth);
        painter.save();
        painter.translate(tilePadding, baseline);
        painter.scale(shrink, shrink);
        fonts::drawTabular(painter, {0, 0}, value_);
        painter.restore();
    }

    QFont numberFont() const { return visuals().font(24, QFont::Light); }
    QFont captionFont() const { return visuals().font(11); }

    QString caption_;
    QString value_;
};

const std::array captions{"Micro breaks", "Long breaks", "Planned", "Skipped", "Screen time", "On breaks"};

/// In the order of the captions.
std::array<QString, captions.size()> valuesOf(const Day &week) {
    return {QString::number(week.micro),   QString::number(week.long_),   QString::number(week.planned),
            QString::number(week.skipped), humanText(week.screenSeconds), humanText(week.breakSeconds)};
}

/// The figures of the last seven days and their chart, kept up to date.
class WeekSection final : public QWidget {
public:
    explicit WeekSection(Stats &stats)
        : stats_(stats), chart_(new WeekChart),
          refresher_(visuals().loop(), {&stats}, [this] { refresh(); }) {
        constexpr int columns = 3;
        auto *grid = layOut<QGridLayout>(nullptr, {}, 10);
        for (const char *caption : captions) {
            const int place = static_cast<int>(tiles_.size());
            tiles_.push_back(new Tile(QString::fromLatin1(caption)));
            grid->addWidget(tiles_.back(), place / columns, place % columns);
        }
        auto *lines = column(this, {CardRow::margin, 2, CardRow::margin, 10}, 14);
        lines->addLayout(grid);
        lines->addWidget(chart_);
        refresh();
    }

private:
    void refresh() {
        const auto week = stats_.lastWeek();
        chart_->setDays(week);
        Day whole;
        for (const auto &[label, day] : week)
            whole = sum(whole, plausible(day));
        const auto values = valuesOf(whole);
        for (std::size_t index = 0; index < values.size(); ++index)
            tiles_[index]->setValue(values[index]);
    }

    Stats &stats_;
    std::vector<Tile *> tiles_;
    WeekChart *chart_;
    Refresher refresher_;
};

/// A button that forgets all statistics at once. For as long as the page is shown it can be undone; what was
/// counted since is kept then.
QWidget *resetRow(Stats &stats) {
    auto *row = new QWidget;
    auto *reset = new Button(u"Reset stats"_s);
    auto *undo = new Button(u"Undo"_s, ButtonRole::bare);
    auto *buttons = line(row);
    buttons->addWidget(reset);
    buttons->addWidget(undo);
    buttons->addStretch();
    undo->setAccessibleName(u"Undo the reset"_s);
    undo->hide();
    const auto forgotten = std::make_shared<Days>();
    QObject::connect(reset, &Button::clicked, row, [&stats, undo, forgotten] {
        *forgotten = sum(std::move(*forgotten), stats.days());
        stats.setDays({});
        stats.save();
        undo->setVisible(!forgotten->empty());
    });
    QObject::connect(undo, &Button::clicked, row, [&stats, undo, forgotten] {
        stats.setDays(sum(stats.days(), std::exchange(*forgotten, {})));
        stats.save();
        undo->hide();
    });
    return row;
}

} // namespace

QWidgetList statsPage(PageContext &context) {
    Stats &stats = context.stats;
    return {card(u"Last 7 days"_s, {}, {new WeekSection(stats)}), resetRow(stats)};
}

} // namespace pavonel
