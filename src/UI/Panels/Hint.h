#pragma once

#include "Platform/MainLoop.h"
#include "UI/Panels/FloatingPanel.h"

namespace pavonel {

/// A word of explanation below a control of a floating panel, once the pointer has rested on the control for
/// a moment. An ordinary tool tip would lie below the panel.
class Hint : public QObject {
public:
    Hint(const DisplayServices &display, QWidget &control, const QString &text);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show();
    void hide();

    DisplayServices display_;
    QWidget &control_;
    QString text_;
    TimerHandle rest_;
    std::unique_ptr<FloatingPanel> panel_;
};

} // namespace pavonel
