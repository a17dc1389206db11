#pragma once

#include "UI/Backgrounds.h"
#include "UI/Controls/Visuals.h"
#include "UI/Refresher.h"

#include <QImage>
#include <QWidget>

namespace pavonel {

/// The break screen in small, with the background, a message and the length of a micro break as they are set.
class BreakPreview : public QWidget {
public:
    BreakPreview(Visuals &visuals, Settings &settings);

    QSize sizeHint() const override { return {visuals_.length(240), visuals_.length(150)}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void forget();
    QImage picture(QSize pixels);

    Visuals &visuals_;
    Settings &settings_;
    Backgrounds backgrounds_;
    QImage drawn_; ///< Null until it is needed.
    Refresher refresher_;
};

} // namespace pavonel
