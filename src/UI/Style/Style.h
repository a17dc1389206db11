#pragma once

#include "UI/Style/Keyboard.h"
#include "UI/Style/Visuals.h"

#include <QProxyStyle>

namespace pavonel {

/// Gives Qt's own controls our looks: those of the settings, of the notices, of menus, and of the dialogs
/// that Qt draws. What each control looks like is told in `Drawing.h`; this passes Qt's questions on.
class Style final : public QProxyStyle {
public:
    explicit Style(const DisplayServices &display);

    const Visuals &visuals() const { return visuals_; }

    using QProxyStyle::polish;
    void polish(QWidget *widget) override;

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;

private:
    void takeColours();
    void giveType(QWidget &widget);

    Visuals visuals_;
    Appearance::Listening onAppearance_;
    Keyboard keyboard_;
};

} // namespace pavonel
