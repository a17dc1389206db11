#pragma once

#include <QAbstractSpinBox>

#include <functional>

namespace pavonel {

/// A closed range of numbers.
struct Range {
    double least;
    double most;
};

/// A number in words and two halves behind it, − and +, that move it by a step within its range. A spin box
/// with a number of its own: one outside of the range stays as it is until the next step, which lands within;
/// Qt's number boxes would bring it back before the user has touched it.
class Stepper : public QAbstractSpinBox {
    Q_OBJECT
    // By these names assistive technology looks for them.
    Q_PROPERTY(double value READ value WRITE moveTo)
    Q_PROPERTY(double minimum READ minimum)
    Q_PROPERTY(double maximum READ maximum)
    Q_PROPERTY(double stepSize READ stepSize)

public:
    /// The number as people read it.
    using Wording = std::function<QString(double)>;

    Stepper(const QString &name, Range range, double step, Wording wording);

    double value() const { return value_; }
    double minimum() const { return range_.least; }
    double maximum() const { return range_.most; }
    double stepSize() const { return step_; }

    /// Without a report; for what did not come from the user.
    void setValue(double value);

    /// Moves to the number within the range that is nearest, as a step would.
    void moveTo(double value);

    /// Told of every step that the user makes.
    std::function<void(double)> onStep;

    void stepBy(int steps) override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    StepEnabled stepEnabled() const override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    Range range_;
    double step_;
    Wording wording_;
    double value_;
};

} // namespace pavonel
