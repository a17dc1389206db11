#include "UI/Panels/ToastController.h"

#include "UI/Panels/ToastView.h"

namespace pavonel {

namespace {

constexpr QSize panelSize(380, 56);
constexpr int margin = 24;
constexpr Seconds fade = 0.25;
constexpr Seconds stay = 6.0;

QPoint corner(const QRectF &visible) {
    return QPointF(visible.center().x() - panelSize.width() / 2.0, visible.top() + margin).toPoint();
}

} // namespace

ToastController::ToastController(const DisplayServices &display, Notifications &notifications)
    : display_(display), presenter_(display, notifications) {}

void ToastController::show(const QString &text, const QString &symbol) {
    presenter_.show({[=, this] { return makePanel(text, symbol); }, corner, fade, fade,
                     [text] { return Notifications::Notice{text}; }});
    dismissal_ = display_.loop.after(stay, [this] { hide(); });
}

std::unique_ptr<FloatingPanel> ToastController::makePanel(const QString &text, const QString &symbol) {
    auto panel =
        std::make_unique<FloatingPanel>(display_, FloatingPanel::Make{QStringLiteral("Pavonel Toast"),
                                                                      panelSize,
                                                                      panelSize.height() / 2.0,
                                                                      0.08,
                                                                      FloatingPanel::Mouse::ignored,
                                                                      {8, 24, 0.20}});
    new ToastView(*panel, text, symbol);
    return panel;
}

void ToastController::hide() {
    dismissal_.reset();
    presenter_.hide();
}

} // namespace pavonel
