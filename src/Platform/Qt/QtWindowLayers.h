#pragma once

#include "Platform/Inset.h"
#include "Platform/WindowLayers.h"

#include <QObject>
#include <QTimer>

#include <memory>
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
    bool placesPanels() const override;
    bool canBlend() const override;
    bool canFade() const override { return false; }
    /// None: a window that opens again has another surface, and an inset would stay with the one before.
    std::unique_ptr<Inset> inset(QWindow &, const QRect &) override { return nullptr; }
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
