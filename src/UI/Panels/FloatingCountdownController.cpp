#include "UI/Panels/FloatingCountdownController.h"

#include "UI/ClockText.h"
#include "UI/Fonts.h"
#include "UI/Refresher.h"

#include <QFontMetricsF>
#include <QPainter>

namespace pavonel {

namespace {

constexpr QSize panelSize(86, 30);
constexpr QPoint besidePointer(16, 12);
constexpr Seconds frame = 1.0 / 30;

class CountdownView final : public QWidget {
public:
    CountdownView(Platform &platform, FloatingPanel &panel, BreakController &controller)
        : QWidget(&panel), controller_(controller), ink_(panel.colours().text),
          refresher_(*platform.mainLoop, {&controller}, [this] { refresh(); }) {
        resize(panel.size());
        refresh();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setFont(fonts::ui(13, QFont::Medium));
        painter.setPen(ink_);
        const QFontMetricsF metrics(painter.font());
        const double left = (width() - fonts::tabularWidth(metrics, text_)) / 2;
        fonts::drawTabular(painter, QPointF(left, (height() + metrics.capHeight()) / 2), text_);
    }

private:
    void refresh() {
        const auto next = controller_.next();
        const QString text = clockText(next ? next->remaining : 0);
        if (text == text_)
            return;
        text_ = text;
        setAccessibleName(text);
        update();
    }

    BreakController &controller_;
    QColor ink_;
    QString text_;
    Refresher refresher_;
};

/// Where the desktop does not tell where the pointer is: below the heads-up.
QPoint restingPlace(const std::optional<Screen> &screen) {
    if (!screen)
        return {};
    const QRectF &visible = screen->visibleFrame;
    constexpr int margin = 18;
    constexpr int headsUpHeight = 132;
    return QPointF(visible.right() - panelSize.width() - margin, visible.top() + margin + headsUpHeight + 12)
        .toPoint();
}

std::optional<Screen> screenAt(Screens &screens, QPoint point) {
    const auto all = screens.all();
    for (const Screen &screen : all) {
        if (screen.frame.contains(point))
            return screen;
    }
    return mainScreen(screens);
}

} // namespace

FloatingCountdownController::FloatingCountdownController(Platform &platform, BreakController &controller)
    : platform_(platform), controller_(controller) {}

void FloatingCountdownController::show() {
    if (panel_)
        return;
    panel_ =
        std::make_unique<FloatingPanel>(platform_, FloatingPanel::Make{QStringLiteral("Pavonel Countdown"),
                                                                       panelSize,
                                                                       panelSize.height() / 2.0,
                                                                       0.1,
                                                                       FloatingPanel::Mouse::ignored,
                                                                       {6, 16, 0.20}});
    new CountdownView(platform_, *panel_, controller_);
    timer_ = platform_.mainLoop->every(frame, [this] { follow(); });
    const QPoint place = corner();
    panel_->present(place, screenAt(*platform_.screens, place - besidePointer));
}

void FloatingCountdownController::hide() {
    timer_.reset();
    panel_.reset();
}

QPoint FloatingCountdownController::corner() const {
    if (const auto pointer = platform_.pointer->position())
        return (*pointer + besidePointer).toPoint();
    return restingPlace(mainScreen(*platform_.screens));
}

void FloatingCountdownController::follow() {
    const QPoint place = corner();
    if (place != panel_->pos())
        panel_->move(place);
}

} // namespace pavonel
