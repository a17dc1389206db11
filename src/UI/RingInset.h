#pragma once

#include <QRasterWindow>

#include <functional>

namespace pavonel {

/// A small window within a large one, for what moves there: where each change of a window costs in
/// proportion to all of it. It is deaf to the mouse.
class RingInset final : public QRasterWindow {
public:
    /// Paints the large window, in its own coordinates, as far as it lies in the rectangle.
    using Paint = std::function<void(QPainter &painter, const QRect &due)>;

    RingInset(QWindow &large, const QRect &place, Paint paint);

    /// Draws this part of the large window again.
    void updatePart(const QRect &due);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Paint paint_;
};

} // namespace pavonel
