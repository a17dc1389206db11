#include "UI/Panels/Hint.h"

#include "UI/Fonts.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel {

namespace {

constexpr Seconds rest = 0.7;
constexpr int fontSize = 11;

class HintText final : public QWidget {
public:
    HintText(const QString &text, FloatingPanel &panel)
        : QWidget(&panel), text_(text), colours_(panel.colours()) {
        setFont(fonts::ui(fontSize));
        setGeometry(panel.contentsRect());
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setPen(colours_.text);
        painter.drawText(rect(), Qt::AlignCenter, text_);
    }

private:
    QString text_;
    const Palette &colours_;
};

} // namespace

Hint::Hint(const DisplayServices &display, QWidget &control, const QString &text)
    : display_(display), control_(control), text_(text) {
    control.setAccessibleDescription(text);
    control.installEventFilter(this);
}

bool Hint::eventFilter(QObject *, QEvent *event) {
    switch (event->type()) {
    case QEvent::Enter:
        rest_ = display_.loop.after(rest, [this] { show(); });
        break;
    case QEvent::Leave:
    case QEvent::MouseButtonPress:
    case QEvent::Hide:
        hide();
        break;
    default:
        break;
    }
    return false;
}

void Hint::show() {
    const QFontMetricsF metrics(fonts::ui(fontSize));
    const QSize size(static_cast<int>(std::ceil(metrics.horizontalAdvance(text_))) + 16, 22);
    panel_ = std::make_unique<FloatingPanel>(
        display_,
        FloatingPanel::Make{
            QStringLiteral("Pavonel Hint"), size, 6, 0.08, FloatingPanel::Mouse::ignored, {2, 8, 0.20}});
    auto *text = new HintText(text_, *panel_);
    text->show();
    const QPoint below =
        control_.mapToGlobal(QPoint(control_.width() - size.width() + 6, control_.height() + 6));
    panel_->present(below, mainScreen(display_.screens.all()));
}

void Hint::hide() {
    rest_.reset();
    panel_.reset();
}

} // namespace pavonel
