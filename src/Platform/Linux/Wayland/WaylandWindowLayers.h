#pragma once

#include "Platform/Linux/Wayland/LayerSurface.h"
#include "Platform/Linux/Wayland/WaylandInsets.h"
#include "Platform/Qt/QtScreens.h"

#include <QObject>

#include <memory>
#include <vector>

namespace pavonel {

/// Windows on the compositor's layer shell, over Qt's own connection to it.
class WaylandWindowLayers final : public WindowLayers {
public:
    /// Null where Qt is not on Wayland, or was not prepared by `chooseWindowSystem` because the compositor
    /// has no layer shell.
    static std::unique_ptr<WaylandWindowLayers> make(std::shared_ptr<WorkedOn> workedOn);
    ~WaylandWindowLayers() override;

    Qt::WindowFlags windowFlags(WindowLayer layer) const override;
    void show(QWindow &window, WindowLayer layer, const Screen &screen) override;
    bool canBlend() const override { return true; }
    bool canFade() const override { return false; }
    std::unique_ptr<Inset> inset(QWindow &window, const QRect &points) override {
        return insets_.make(window, points);
    }
    void cutTo(QWindow &window, const QRegion &pixels) override;
    void takeKeyboard(QWindow &) override {} // the compositor gives it to each overlay that appears
    void yieldKeyboard() override {}

private:
    WaylandWindowLayers(zwlr_layer_shell_v1 &shell, std::shared_ptr<WorkedOn> workedOn);

    void forget(const QWindow *window);
    void follow(QWindow &panel);
    void arrange();

    zwlr_layer_shell_v1 &shell_;
    WaylandInsets insets_;
    std::shared_ptr<WorkedOn> workedOn_;
    QObject context_;
    std::vector<std::unique_ptr<LayerSurface>> surfaces_;
};

} // namespace pavonel
