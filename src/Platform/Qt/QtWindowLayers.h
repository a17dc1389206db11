#pragma once

#include "Platform/WindowLayers.h"

#include <QObject>
#include <QTimer>

#include <vector>

namespace pavonel {

/// What Qt can do by itself on any system: frameless windows that ask to stay on top, and fullscreen ones for
/// overlays.
class QtWindowLayers final : public WindowLayers {
public:
    QtWindowLayers();
    QString limitation() const override;
    Qt::WindowFlags windowFlags(WindowLayer layer) const override;
    void show(QWindow &window, WindowLayer layer, const Screen &screen) override;
    bool canBlend() const override;
    bool canFade() const override { return false; }
    bool updatesInPart() const override { return false; } // Qt copies all of it
    void cutTo(QWindow &window, const QRegion &pixels) override;
    void takeKeyboard(QWindow &window) override;
    void yieldKeyboard() override {}

private:
    void comeBack();

    std::vector<QWindow *> overlays_; ///< The last one has the keyboard.
    QTimer keyboardLost_;
    QObject context_;
};

} // namespace pavonel
