#pragma once

#include "UI/Controls/Look.h"

#include <QWidget>

#include <optional>

class QScrollBar;

namespace pavonel {

/// The thin thumb of a scroll area: shows where one is, and can be dragged.
class ScrollThumb : public QWidget {
public:
    static constexpr int width = 12; ///< Of the strip that the thumb runs in.

    ScrollThumb(Look &look, QScrollBar &bar, QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QRectF thumb() const;
    void follow();

    Look &look_;
    QScrollBar &bar_;
    std::optional<double> grip_; ///< Where on the thumb the pointer holds it.
};

} // namespace pavonel
