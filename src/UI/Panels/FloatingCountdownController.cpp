#include "UI/Panels/FloatingCountdownController.h"

#include "Core/ClockText.h"
#include "UI/Fonts.h"
#include "UI/Refresher.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace pavonel {

namespace {

constexpr QSize panelSize(86, 30);
constexpr QPoint besidePointer(16, 12);
constexpr Seconds frame = 1.0 / 30;

class CountdownView final : public QWidget {
public:
    CountdownView(const DisplayServices &display, FloatingPanel &panel, BreakController &controller)
        : QWidget(&panel), controller_(controller), colours_(panel.colours()),
          refresher_(display.loop, {&controller}, [this] { refresh(); }) {
        setGeometry(panel.contentsRect());
        refresh();
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setFont(fonts::ui(13, QFont::Medium));
        painter.setPen(colours_.text);
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
    const Palette &colours_;
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

std::optional<Screen> screenAt(const std::vector<Screen> &screens, QPoint point) {
    for (const Screen &screen : screens) {
        if (screen.frame.toRect().contains(
                point)) // the first column of the next screen is not this one's last
            return screen;
    }
    return mainScreen(screens);
}

/// Right of the pointer and below; at the edges of its screen as near to that as the whole panel has room,
/// and never over the pointer itself.
QPoint beside(QPoint pointer, const std::optional<Screen> &screen) {
    QPoint corner = pointer + besidePointer;
    if (!screen)
        return corner;
    const QRect whole = screen->frame.toRect();
    corner.setX(std::max(whole.left(), std::min(corner.x(), whole.right() + 1 - panelSize.width())));
    if (corner.y() + panelSize.height() > whole.bottom() + 1)
        corner.setY(pointer.y() - besidePointer.y() - panelSize.height());
    return corner;
}

} // namespace

FloatingCountdownController::FloatingCountdownController(const DisplayServices &display, Pointer &pointer,
                                                         BreakController &controller)
    : display_(display), pointer_(pointer), controller_(controller),
      screenChanges_([this] { followScreens(); }) {}

void FloatingCountdownController::show() {
    if (panel_ || !display_.layers.placesPanels())
        return;
    screens_ = display_.screens.all();
    panel_ =
        std::make_unique<FloatingPanel>(display_, FloatingPanel::Make{QStringLiteral("Pavonel Countdown"),
                                                                      panelSize,
                                                                      panelSize.height() / 2.0,
                                                                      0.1,
                                                                      FloatingPanel::Mouse::ignored,
                                                                      {6, 16, 0.20}});
    new CountdownView(display_, *panel_, controller_);
    timer_ = display_.loop.every(frame, [this] { follow(); });
    const QPoint place = corner();
    panel_->present(place, screenAt(screens_, place));
}

void FloatingCountdownController::hide() {
    timer_.reset();
    panel_.reset();
}

QPoint FloatingCountdownController::corner() const {
    if (const auto pointer = pointer_.position())
        return beside(pointer->toPoint(), screenAt(screens_, pointer->toPoint()));
    return restingPlace(mainScreen(screens_));
}

void FloatingCountdownController::follow() {
    panel_->moveTo(corner());
}

void FloatingCountdownController::followScreens() {
    if (!panel_)
        return;
    hide();
    show();
}

} // namespace pavonel
