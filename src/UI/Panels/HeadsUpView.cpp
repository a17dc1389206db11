#include "UI/Panels/HeadsUpView.h"

#include "Core/ClockText.h"
#include "UI/Fonts.h"
#include "UI/Symbol.h"

#include <QFontMetricsF>
#include <QPainter>

#include <array>

namespace pavonel {

namespace {

constexpr int padding = 14;
constexpr int headerHeight = 32;
constexpr int headerSpacing = 10;
constexpr int rowSpacing = 12;
constexpr int buttonSpacing = 8;
constexpr int symbolSide = 20;
constexpr int timeSize = 20;
constexpr int lineSpacing = 2;

QString symbolOf(BreakKind kind) {
    switch (kind) {
    case BreakKind::micro:
        return QStringLiteral("eye");
    case BreakKind::long_:
        return QStringLiteral("figure.walk");
    case BreakKind::planned:
        break;
    }
    return QStringLiteral("calendar");
}

/// The title may be of any length and the words after it say what it is about, so the title gives way.
QString headline(const QString &title, const QFontMetricsF &metrics, double room) {
    const QString comingUp = QStringLiteral(" coming up");
    const double left = room - metrics.horizontalAdvance(comingUp);
    return metrics.elidedText(title.simplified(), Qt::ElideRight, left) + comingUp;
}

} // namespace

int HeadsUpView::height(const Settings &settings) {
    return settings.isPostponePermitted() ? 132 : 96;
}

HeadsUpView::HeadsUpView(const DisplayServices &display, FloatingPanel &panel, BreakController &controller,
                         Settings &settings, BreakKind kind, const QString &title,
                         std::function<void()> onClose)
    : QWidget(&panel), controller_(controller), settings_(settings), palette_(panel.colours()), kind_(kind),
      title_(title), onClose_(std::move(onClose)) {
    setGeometry(panel.contentsRect());
    setAccessibleName(title.simplified() + QStringLiteral(" coming up"));
    addCloseButton(display);
    addButtons();
    refresh();
    refresher_ = std::make_unique<Refresher>(
        display.loop, std::vector<Observable *>{&controller_, &settings_}, [this] { refresh(); });
}

Button *HeadsUpView::addButton(const QString &text, ButtonRole role, std::function<void()> action) {
    auto *button = new Button(text, role);
    button->setParent(this);
    connect(button, &Button::clicked, this, std::move(action));
    return button;
}

void HeadsUpView::addButtons() {
    start_ = addButton(QStringLiteral("Start now"), ButtonRole::noticeProminent,
                       [this] { controller_.startBreak(kind_, BreakController::Initiator::user); });
    oneMinute_ =
        addButton(QStringLiteral("+1 min"), ButtonRole::notice, [this] { controller_.postpone(60); });
    fiveMinutes_ =
        addButton(QStringLiteral("+5 min"), ButtonRole::notice, [this] { controller_.postpone(300); });
    skip_ = addButton(QStringLiteral("Skip"), ButtonRole::notice, [this] { controller_.skip(); });
}

void HeadsUpView::addCloseButton(const DisplayServices &display) {
    const QString explanation = QStringLiteral("Dismiss this notice");
    close_ = Button::ofSymbol(QStringLiteral("xmark"), explanation, ButtonRole::noticeClose);
    close_->setParent(this);
    close_->move(width - padding - close_->width(), padding + (headerHeight - close_->height()) / 2);
    connect(close_, &Button::clicked, this, onClose_);
    closeHint_ = std::make_unique<Hint>(display, *close_, explanation);
}

void HeadsUpView::refresh() {
    const auto next = controller_.next();
    const QString time = clockText(next ? next->remaining : 0);
    layOutButtons();
    if (time == time_)
        return;
    time_ = time;
    update();
}

void HeadsUpView::layOutButtons() {
    oneMinute_->setVisible(settings_.isPostponePermitted());
    fiveMinutes_->setVisible(settings_.isPostponePermitted());
    skip_->setVisible(settings_.isSkipPermitted());
    int left = padding;
    for (Button *button : std::array{start_, oneMinute_, fiveMinutes_, skip_}) {
        if (button->isHidden())
            continue;
        button->move(left, padding + headerHeight + rowSpacing);
        left += button->width() + buttonSpacing;
    }
}

void HeadsUpView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const double middle = padding + headerHeight / 2.0;
    const QImage symbol = Symbol::image(symbolOf(kind_), symbolSide, palette_.text, devicePixelRatioF());
    painter.drawImage(QPointF(padding, middle - symbolSide / 2.0), symbol);

    painter.setFont(fonts::ui(timeSize, QFont::Light));
    painter.setPen(palette_.text);
    const QFontMetricsF metrics(painter.font());
    const double timeLeft = close_->x() - headerSpacing - fonts::tabularWidth(metrics, time_);
    fonts::drawTabular(painter, QPointF(timeLeft, middle + metrics.capHeight() / 2), time_);
    paintLines(painter, timeLeft - headerSpacing);
}

void HeadsUpView::paintLines(QPainter &painter, double right) const {
    constexpr int left = padding + symbolSide + headerSpacing;
    const QFont headlineFont = fonts::ui(13, QFont::DemiBold);
    const QFont sublineFont = fonts::ui(11);
    const QFontMetricsF headlineMetrics(headlineFont);
    const QFontMetricsF sublineMetrics(sublineFont);
    const double columnHeight = headlineMetrics.height() + lineSpacing + sublineMetrics.height();
    const double top = padding + (headerHeight - columnHeight) / 2;
    painter.setFont(headlineFont);
    painter.drawText(QPointF(left, top + headlineMetrics.ascent()),
                     headline(title_, headlineMetrics, right - left));
    painter.setFont(sublineFont);
    painter.setPen(palette_.secondaryText);
    painter.drawText(QPointF(left, top + columnHeight - sublineMetrics.descent()),
                     QStringLiteral("Your eyes will appreciate this."));
}

} // namespace pavonel
