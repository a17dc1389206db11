#include "UI/SettingsWindow/Pages/Stats/WeekChart.h"

#include "Core/CalendarText.h"
#include "Core/ClockText.h"
#include "Core/DaySums.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QFontMetricsF>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr int legendHeight = 24;
constexpr int barsHeight = 104;
constexpr int labelHeight = 24;
constexpr int scaleRoom = 28; // at the right
constexpr std::size_t daysOfAWeek = 7;
constexpr double widestBar = 44;
constexpr double gapInBar = 3;
constexpr double thinnestPart = 3;

/// "Monday: 5h 20m at the screen, 20m on breaks."
QString sentence(const LabelledDay &day) {
    return QStringLiteral("%1: %2 at the screen, %3 on breaks.")
        .arg(weekdayOf(day.label), humanText(day.day.screenSeconds), humanText(day.day.breakSeconds));
}

double partHeight(Seconds duration, double scale) {
    return duration > 0 ? std::max(thinnestPart, duration * scale) : 0;
}

/// Round where the bar ends, nearly straight where its two parts meet.
void paintPart(QPainter &painter, const QRectF &part, double above, double below, const QColor &colour) {
    if (part.height() <= 0)
        return;
    const double top = std::min({above, part.height() / 2, part.width() / 2});
    const double bottom = std::min({below, part.height() / 2, part.width() / 2});
    QPainterPath path;
    path.moveTo(part.left(), part.bottom() - bottom);
    path.lineTo(part.left(), part.top() + top);
    path.arcTo(QRectF(part.left(), part.top(), 2 * top, 2 * top), 180, -90);
    path.arcTo(QRectF(part.right() - 2 * top, part.top(), 2 * top, 2 * top), 90, -90);
    path.arcTo(QRectF(part.right() - 2 * bottom, part.bottom() - 2 * bottom, 2 * bottom, 2 * bottom), 0, -90);
    path.arcTo(QRectF(part.left(), part.bottom() - 2 * bottom, 2 * bottom, 2 * bottom), 270, -90);
    painter.fillPath(path, colour);
}

} // namespace

WeekChart::WeekChart() {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFont(visuals().font(11));
    setAccessibleRole(*this, QAccessible::Chart);
    setAccessibleName(QStringLiteral("Screen time and breaks of the last 7 days"));
}

void WeekChart::setDays(std::vector<LabelledDay> days) {
    days_ = std::move(days);
    QStringList sentences;
    for (LabelledDay &day : days_) {
        day.day = plausible(day.day);
        sentences.append(sentence(day));
    }
    const QString told = sentences.join(u' ');
    if (told == accessibleDescription())
        return; // a second more is not to be seen
    setAccessibleDescription(told);
    if (hovered_ >= days_.size())
        hovered_.reset();
    update();
}

QSize WeekChart::sizeHint() const {
    return {300, visuals().length(legendHeight) + barsHeight + visuals().length(labelHeight)};
}

QRectF WeekChart::column(std::size_t day) const {
    const double columnWidth =
        static_cast<double>(width() - visuals().length(scaleRoom)) / static_cast<double>(days_.size());
    return {columnWidth * static_cast<double>(day), static_cast<double>(visuals().length(legendHeight)),
            columnWidth, barsHeight};
}

/// Points a second. An hour and less do not fill the height.
double WeekChart::scale() const {
    Seconds most = 3600;
    for (const auto &[label, day] : days_)
        most = std::max(most, day.screenSeconds + day.breakSeconds);
    return (barsHeight - gapInBar - thinnestPart) / most;
}

WeekChart::Bar WeekChart::bar(std::size_t day) const {
    const QRectF place = column(day);
    const double barWidth = std::min(widestBar, place.width() * 0.7);
    const double left = std::round(place.center().x() - barWidth / 2);
    const Day &figures = days_[day].day;
    const double screen = std::round(partHeight(figures.screenSeconds, scale()));
    const double breaks = std::round(partHeight(figures.breakSeconds, scale()));
    const double gap = screen > 0 && breaks > 0 ? gapInBar : 0;
    return {{left, place.bottom() - breaks - gap - screen, barWidth, screen},
            {left, place.bottom() - breaks, barWidth, breaks}};
}

std::optional<std::size_t> WeekChart::dayAt(QPointF point) const {
    for (std::size_t day = 0; day < days_.size(); ++day) {
        if (column(day).adjusted(0, 0, 0, visuals().length(labelHeight)).contains(point))
            return day;
    }
    return {};
}

bool WeekChart::event(QEvent *event) {
    std::optional<std::size_t> hovered = hovered_;
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverEnter)
        hovered = dayAt(static_cast<QHoverEvent *>(event)->position());
    else if (event->type() == QEvent::HoverLeave)
        hovered.reset();
    tellOf(hovered);
    return QWidget::event(event);
}

void WeekChart::tellOf(std::optional<std::size_t> day) {
    if (day == hovered_)
        return;
    hovered_ = day;
    update();
}

void WeekChart::keyPressEvent(QKeyEvent *event) {
    const std::size_t last = days_.empty() ? 0 : days_.size() - 1;
    const std::size_t at = hovered_.value_or(last);
    if (days_.empty() || (event->key() != Qt::Key_Left && event->key() != Qt::Key_Right))
        return QWidget::keyPressEvent(event);
    tellOf(event->key() == Qt::Key_Right ? std::min(at + 1, last) : at - std::min<std::size_t>(at, 1));
}

/// It begins with today.
void WeekChart::focusInEvent(QFocusEvent *event) {
    if (FocusRing::isOn(*this) && !days_.empty())
        tellOf(days_.size() - 1);
    QWidget::focusInEvent(event);
}

void WeekChart::focusOutEvent(QFocusEvent *event) {
    tellOf({});
    QWidget::focusOutEvent(event);
}

void WeekChart::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintScale(painter);
    paintLegend(painter);
    for (std::size_t day = 0; day < days_.size(); ++day)
        paintDay(painter, day);
    FocusRing::draw(painter, *this, QRectF(rect()).adjusted(4, 4, -4, -4), 8, visuals().palette().accentText);
}

/// Whole hours: as many lines as can be told apart.
void WeekChart::paintScale(QPainter &painter) const {
    constexpr Seconds hour = 3600;
    constexpr int mostLines = 3;
    if (days_.empty())
        return;
    const QRectF place = column(0);
    int step = 1;
    while (place.height() / (step * hour * scale()) >= mostLines + 1)
        step *= 2;
    const double right = width() - visuals().length(scaleRoom);
    painter.setPen(visuals().palette().secondaryText);
    for (int hours = step; hours * hour * scale() <= place.height(); hours += step) {
        const double y = place.bottom() - hours * hour * scale();
        drawHairline(painter, {0, y}, {right, y}, visuals().palette().cardOutline);
        painter.drawText(QRectF(right, y - 10, visuals().length(scaleRoom), 20),
                         Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("%1h").arg(hours));
    }
}

/// What the colours mean, or the figures of the day under the pointer.
void WeekChart::paintLegend(QPainter &painter) const {
    const Palette &palette = visuals().palette();
    const QFontMetricsF metrics(font());
    const double middle = metrics.height() / 2;
    constexpr double dot = 8;
    QString screen = QStringLiteral("Screen time");
    QString breaks = QStringLiteral("On breaks");
    double x = 0;
    const auto write = [&](const QString &text, const QColor &ink) {
        painter.setPen(ink);
        painter.drawText(QPointF(x, metrics.ascent()), text);
        x += metrics.horizontalAdvance(text) + 14;
    };
    if (hovered_) {
        const auto &[label, figures] = days_[*hovered_];
        screen = humanText(figures.screenSeconds) + QStringLiteral(" at the screen");
        breaks = humanText(figures.breakSeconds) + QStringLiteral(" on breaks");
        write(weekdayOf(label), palette.text);
    }
    for (const auto &[text, colour] : {std::pair(screen, palette.accent), std::pair(breaks, palette.track)}) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(x, std::round(middle - dot / 2), dot, dot), 2.5, 2.5);
        x += dot + 6;
        write(text, palette.secondaryText);
    }
}

void WeekChart::paintDay(QPainter &painter, std::size_t day) const {
    constexpr double outer = 5;
    constexpr double inner = 2;
    const Palette &palette = visuals().palette();
    const auto [screen, breaks] = bar(day);
    const bool aside = hovered_ && hovered_ != day;
    painter.setOpacity(aside ? 0.55 : 1);
    paintPart(painter, screen, outer, breaks.isEmpty() ? outer : inner, palette.accent);
    paintPart(painter, breaks, screen.isEmpty() ? outer : inner, outer, palette.track);
    const QRectF place = column(day);
    if (screen.isEmpty() && breaks.isEmpty())
        paintPart(painter, {screen.left(), place.bottom() - 2, screen.width(), 2}, 1, 1, palette.track);
    painter.setOpacity(1);
    const bool today = day + 1 == daysOfAWeek;
    painter.setFont(visuals().font(11, today ? QFont::DemiBold : QFont::Normal));
    painter.setPen(hovered_ == day || today ? palette.text : palette.secondaryText);
    QString label = days_[day].label;
    if (const auto word = QStringLiteral("Today");
        today && painter.fontMetrics().horizontalAdvance(word) <= place.width())
        label = word;
    painter.drawText(QRectF(place.left(), place.bottom(), place.width(), visuals().length(labelHeight)),
                     Qt::AlignHCenter | Qt::AlignBottom, label);
}

} // namespace pavonel
