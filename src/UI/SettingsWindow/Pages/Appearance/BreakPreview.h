#pragma once

#include "UI/Backgrounds.h"
#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"
#include "UI/Refresher.h"

#include <QImage>
#include <QWidget>

namespace pavonel {

/// The break screen in small, with the background, a message and the length of a micro break as they are set.
class BreakPreview : public QWidget, public AccessibleControl {
public:
    BreakPreview(Look &look, Settings &settings);

    QSize sizeHint() const override { return {look_.length(240), look_.length(150)}; }
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void forget();
    QImage picture(QSize pixels);

    Look &look_;
    Settings &settings_;
    Backgrounds backgrounds_;
    QImage drawn_; ///< Null until it is needed.
    Refresher refresher_;
};

} // namespace pavonel
