#pragma once

#include "Platform/Linux/Wayland/Anchoring.h"
#include "Platform/WindowLayers.h"

#include <QObject>
#include <QTimer>

struct wl_output;
struct wl_surface;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

namespace pavonel {

/// One window's place on the layer shell, until the window is hidden or the compositor closes it. The window
/// appears as soon as the compositor has told its size.
class LayerSurface final : public QObject {
public:
    /// The window has its native window. Without an output the compositor chooses one.
    LayerSurface(zwlr_layer_shell_v1 &shell, QWindow &window, WindowLayer layer, wl_output *output,
                 const QRect &outputFrame);
    ~LayerSurface() override;

    QWindow &window() const { return window_; }
    WindowLayer layer() const { return layer_; }

    /// Panels lie above fullscreen windows, but below a break.
    enum class Beside { nothing, break_ };
    void stand(Beside what);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void giveRole(zwlr_layer_shell_v1 &shell, wl_output *output);
    void letInputPass();
    void askForKeyboard();
    void place();
    void setPlace(const Anchoring &anchoring);
    void configure(std::uint32_t serial, QSize size);
    void close();
    void drop();

    QWindow &window_;
    WindowLayer layer_;
    QRect outputFrame_;
    Beside beside_ = Beside::nothing;
    wl_surface *surface_;
    QTimer keyboardLost_;
    zwlr_layer_surface_v1 *role_ = nullptr;
};

} // namespace pavonel
