#pragma once

#include <QPaintEvent>
#include <QWidget>

namespace pavonel::test {

/// Notes what is painted again.
class PaintSpy final : public QObject {
public:
    explicit PaintSpy(QWidget &watched) { watched.installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::Paint) {
            region += static_cast<QPaintEvent *>(event)->region();
            ++paints;
        }
        return QObject::eventFilter(watched, event);
    }

    QRegion region;
    int paints = 0;
};

} // namespace pavonel::test
