#include "UI/Panels/ToastController.h"

#include "UI/Panels/ToastView.h"

namespace pavonel {

namespace {

constexpr QSize panelSize(380, 56);
constexpr int margin = 24;
constexpr Seconds fade = 0.25;
constexpr Seconds stay = 6.0;

QPoint corner(const std::optional<Screen> &screen) {
    if (!screen)
        return {};
    const QRectF &visible = screen->visibleFrame;
    return QPointF(visible.center().x() - panelSize.width() / 2.0, visible.top() + margin).toPoint();
}

} // namespace

ToastController::ToastController(Platform &platform) : platform_(platform), stage_(platform) {}

void ToastController::show(const QString &text, const QString &symbol) {
    hide();
    auto panel =
        std::make_unique<FloatingPanel>(platform_, FloatingPanel::Make{QStringLiteral("Pavonel Toast"),
                                                                       panelSize,
                                                                       panelSize.height() / 2.0,
                                                                       0.08,
                                                                       FloatingPanel::Mouse::ignored,
                                                                       {8, 24, 0.20}});
    new ToastView(*panel, text, symbol);
    const auto screen = mainScreen(*platform_.screens);
    stage_.show(std::move(panel), corner(screen), screen, fade);
    dismissal_ = platform_.mainLoop->after(stay, [this] { hide(); });
}

void ToastController::hide() {
    dismissal_.reset();
    stage_.hide(fade);
}

} // namespace pavonel
