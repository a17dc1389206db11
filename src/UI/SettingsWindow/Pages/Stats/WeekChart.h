#pragma once

#include "Core/Stats.h"

#include <QWidget>

#include <optional>

namespace pavonel {

/// Seven days side by side, each a bar of the time at the screen upon one of the time on breaks, at one
/// scale. The day under the pointer tells its figures, as does the one that the arrow keys lead to; a screen
/// reader gets those of all. Qt's charts would be one more library.
class WeekChart : public QWidget {
public:
    WeekChart();

    void setDays(std::vector<LabelledDay> days);

    QSize sizeHint() const override;

    /// The two parts of a day's bar, above each other. What is no sensible time counts as none; a time that
    /// is not nothing can be seen.
    struct Bar {
        QRectF screen;
        QRectF breaks;
    };
    Bar bar(std::size_t day) const;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRectF column(std::size_t day) const;
    std::optional<std::size_t> dayAt(QPointF point) const;
    double scale() const;
    void tellOf(std::optional<std::size_t> day);
    void paintScale(QPainter &painter) const;
    void paintLegend(QPainter &painter) const;
    void paintDay(QPainter &painter, std::size_t day) const;

    std::vector<LabelledDay> days_;
    std::optional<std::size_t> hovered_;
};

} // namespace pavonel
