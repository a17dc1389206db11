#include "UI/Panels/HeadsUpController.h"

#include "UI/Panels/HeadsUpView.h"

namespace pavonel {

namespace {

constexpr Seconds fadeIn = 0.25;
constexpr Seconds fadeOut = 0.2;
constexpr int margin = 18;

QPoint corner(const QRectF &visible) {
    return QPointF(visible.right() - HeadsUpView::width - margin, visible.top() + margin).toPoint();
}

} // namespace

HeadsUpController::HeadsUpController(const DisplayServices &display, BreakController &controller,
                                     Settings &settings)
    : display_(display), controller_(controller), settings_(settings), presenter_(display) {}

void HeadsUpController::show(BreakKind kind, const QString &title) {
    presenter_.show({[=, this] { return makePanel(kind, title); }, corner, fadeIn, fadeOut});
}

std::unique_ptr<FloatingPanel> HeadsUpController::makePanel(BreakKind kind, const QString &title) {
    auto panel = std::make_unique<FloatingPanel>(
        display_, FloatingPanel::Make{QStringLiteral("Pavonel Heads-up"),
                                      QSize(HeadsUpView::width, HeadsUpView::height(settings_)),
                                      14,
                                      0.08,
                                      FloatingPanel::Mouse::received,
                                      {10, 30, 0.22}});
    new HeadsUpView(display_, *panel, controller_, settings_, kind, title, [this] { hide(); });
    return panel;
}

void HeadsUpController::hide() {
    presenter_.hide();
}

} // namespace pavonel
