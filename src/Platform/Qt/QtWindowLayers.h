#pragma once

#include "Platform/Inset.h"
#include "Platform/WindowLayers.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace pavonel {

/// What Qt can do by itself on any system: frameless windows that ask to stay on top, and fullscreen ones for
/// overlays.
class QtWindowLayers final : public WindowLayers {
public:
    /// Null where the system cannot make one. It must heed that a window may be opened anew.
    using MakeInset = std::function<std::unique_ptr<Inset>(QWindow &window, const QRect &points)>;

    explicit QtWindowLayers(MakeInset makeInset = [](QWindow &, const QRect &) { return nullptr; });
    QString limitation() const override;
    Qt::WindowFlags windowFlags(WindowLayer layer) const override;
    void show(QWindow &window, WindowLayer layer, const Screen &screen) override;
    bool placesPanels() const override;
    bool canBlend() const override;
    bool canFade() const override { return false; }
    std::unique_ptr<Inset> inset(QWindow &window, const QRect &points) override {
        return makeInset_(window, points);
    }
    void cutTo(QWindow &window, const QRegion &pixels) override;
    void takeKeyboard(QWindow &window) override;
    void yieldKeyboard() override {}

private:
    void comeBack();

    MakeInset makeInset_;
    std::vector<QWindow *> overlays_; ///< The last one has the keyboard.
    QTimer keyboardLost_;
    QObject context_;
};

} // namespace pavonel
