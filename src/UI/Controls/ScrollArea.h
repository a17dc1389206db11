#pragma once

#include "Platform/MainLoop.h"

#include <QScrollArea>

namespace pavonel {

/// A column that scrolls up and down, smoothly for a wheel with notches, for which Qt's own jumps; sideways
/// too where the text is so large that it has no room.
class ScrollArea : public QScrollArea {
public:
    explicit ScrollArea(QWidget *content);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void glideBy(double distance);
    void glide();

    double target_ = 0; ///< Where the glide under way ends.
    TimerHandle frames_;
};

} // namespace pavonel
