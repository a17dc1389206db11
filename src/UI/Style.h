#pragma once

#include "UI/Controls/Look.h"

#include <QProxyStyle>

namespace pavonel {

/// Gives our looks to the controls of the toolkit's own that are left: menus.
class Style final : public QProxyStyle {
public:
    explicit Style(Platform &platform);

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;

private:
    Look look_;
};

} // namespace pavonel
