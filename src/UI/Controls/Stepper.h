#pragma once

#include "Platform/MainLoop.h"
#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Visuals.h"

#include <QWidget>

#include <functional>
#include <optional>

namespace pavonel {

/// A closed range of numbers.
struct Range {
    double least;
    double most;
};

/// Not a `QAbstractSpinBox`, which brings its number back into its range before the user has touched it: two
/// halves, − and +, that move a number by a step within its range, again and again while one is held and the
/// pointer on it. A number outside of the range stays as it is until the next step, which lands within.
class Stepper : public QWidget, public AccessibleControl {
public:
    /// The number as people read it.
    using Wording = std::function<QString(double)>;

    Stepper(Visuals &visuals, const QString &name, Range range, double step, Wording wording);

    double value() const { return value_; }

    /// Without a report; for what did not come from the user.
    void setValue(double value);

    /// Told of every step that the user makes.
    std::function<void(double)> onStep;

    /// Told of every other value, wherever it comes from; optional.
    std::function<void(double)> onChange;

    enum class Direction { down, up };
    void step(Direction direction);
    bool canStep(Direction direction) const;

    /// Moves to the number within the range that is nearest, as a step would.
    void moveTo(double value);

    Range range() const { return range_; }
    double stepSize() const { return step_; }
    QString valueText() const { return wording_(value_); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    QAccessibleInterface *makeAccessible() override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    QSize bodySize() const;
    QRectF body() const;
    QRectF half(Direction direction) const;
    std::optional<Direction> halfAt(QPointF point) const;
    void drawHalf(QPainter &painter, Direction direction) const;
    void release();
    void reportValue(const QString &textBefore);

    Visuals &visuals_;
    Range range_;
    double step_;
    Wording wording_;
    double value_;
    std::optional<Direction> hovered_;
    std::optional<Direction> held_;
    TimerHandle repeat_;
};

} // namespace pavonel
