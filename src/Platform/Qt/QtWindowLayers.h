#pragma once

#include "Platform/WindowLayers.h"

namespace pavonel {

/// What Qt can do by itself on any system: frameless windows that ask to stay on top.
class QtWindowLayers final : public WindowLayers {
public:
    QString limitation() const override;
    Qt::WindowFlags windowFlags(WindowLayer layer) const override;
    void show(QWindow &window, WindowLayer layer, const Screen &screen) override;
    bool canBlend() const override;
    bool canFade() const override { return false; }
    bool updatesInPart() const override { return false; } // Qt copies all of it
    void cutTo(QWindow &window, const QRegion &pixels) override;
    void takeKeyboard(QWindow &window) override;
    void yieldKeyboard() override {}
};

} // namespace pavonel
