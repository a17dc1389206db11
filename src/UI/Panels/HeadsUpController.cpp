#include "UI/Panels/HeadsUpController.h"

#include "UI/Panels/HeadsUpView.h"

#include <QString>

namespace pavonel {

using namespace Qt::StringLiterals;

namespace {

constexpr Seconds fadeIn = 0.25;
constexpr Seconds fadeOut = 0.2;
constexpr int margin = 18;

QPoint corner(const QRectF &visible) {
    return QPointF(visible.right() - HeadsUpView::width - margin, visible.top() + margin).toPoint();
}

} // namespace

HeadsUpController::HeadsUpController(const DisplayServices &display, Notifications &notifications,
                                     BreakController &controller, Settings &settings)
    : display_(display), controller_(controller), settings_(settings), presenter_(display, notifications) {}

void HeadsUpController::show(BreakKind kind, const QString &title) {
    presenter_.show({[=, this] { return makePanel(kind, title); }, corner, fadeIn, fadeOut,
                     [=, this] { return notification(kind, title); }});
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

/// With the buttons that the panel would have now. The desktop cannot take one back that is no longer
/// permitted, so it does nothing then.
Notifications::Notice HeadsUpController::notification(BreakKind kind, const QString &title) {
    const auto always = [] { return true; };
    const auto postpone = [this] { return settings_.isPostponePermitted(); };
    const auto skip = [this] { return settings_.isSkipPermitted(); };
    Notifications::Notice notice{title.simplified() + u" coming up"_s, u"Your eyes will appreciate this."_s};
    const auto add = [&notice](const QString &label, const std::function<bool()> &isPermitted,
                               const std::function<void()> &action) {
        if (isPermitted())
            notice.buttons.push_back({label, [=] {
                                          if (isPermitted())
                                              action();
                                      }});
    };
    add(u"Start now"_s, always,
        [this, kind] { controller_.startBreak(kind, BreakController::Initiator::user); });
    add(u"+1 min"_s, postpone, [this] { controller_.postpone(60); });
    add(u"+5 min"_s, postpone, [this] { controller_.postpone(300); });
    add(u"Skip"_s, skip, [this] { controller_.skip(); });
    return notice;
}

void HeadsUpController::hide() {
    presenter_.hide();
}

} // namespace pavonel
