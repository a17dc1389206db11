#include "UI/Panels/HeadsUpController.h"

#include "UI/Panels/HeadsUpView.h"

namespace pavonel {

namespace {

constexpr Seconds fadeIn = 0.25;
constexpr Seconds fadeOut = 0.2;
constexpr int margin = 18;

QPoint corner(const std::optional<Screen> &screen, QSize size) {
    if (!screen)
        return {};
    const QRectF &visible = screen->visibleFrame;
    return QPointF(visible.right() - size.width() - margin, visible.top() + margin).toPoint();
}

} // namespace

HeadsUpController::HeadsUpController(Platform &platform, BreakController &controller, Settings &settings)
    : platform_(platform), controller_(controller), settings_(settings), stage_(platform) {}

void HeadsUpController::show(BreakKind kind, const QString &title) {
    hide();
    const QSize size(HeadsUpView::width, HeadsUpView::height(settings_));
    auto panel =
        std::make_unique<FloatingPanel>(platform_, FloatingPanel::Make{QStringLiteral("Pavonel Heads-up"),
                                                                       size,
                                                                       14,
                                                                       0.08,
                                                                       FloatingPanel::Mouse::received,
                                                                       {10, 30, 0.22}});
    new HeadsUpView(platform_, *panel, controller_, settings_, kind, title, [this] { hide(); });
    const auto screen = mainScreen(*platform_.screens);
    stage_.show(std::move(panel), corner(screen, size), screen, fadeIn);
}

void HeadsUpController::hide() {
    stage_.hide(fadeOut);
}

} // namespace pavonel
