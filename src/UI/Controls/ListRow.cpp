#include "UI/Controls/ListRow.h"

#include "UI/Controls/Button.h"

#include <QAccessibleWidget>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int pictureSide = 24;
constexpr int gap = 10;

QString onOneLine(const QString &text) {
    constexpr qsizetype longestShown = 400; // characters; no window is as wide
    return text.left(longestShown).simplified();
}

} // namespace

ListRow::ListRow(Look &look, const Entry &entry, std::function<void()> remove)
    : CardRow(look), entry_{onOneLine(entry.text), onOneLine(entry.detail), entry.picture},
      remove_(Button::ofSymbol(look, QStringLiteral("xmark.circle.fill"),
                               QStringLiteral("Remove ") + entry_.text)) {
    // The symbol, not the room around it, ends where the other rows end.
    layout()->setContentsMargins(margin, 0, margin - Button::besideSymbol(look), 0);
    static_cast<QHBoxLayout *>(layout())->addStretch();
    add(remove_);
    setAccessibleName(entry_.text);
    setAccessibleDescription(entry_.detail);
    // From the loop, since the button that is being clicked can go with the row.
    connect(remove_, &Button::clicked, this, std::move(remove), Qt::QueuedConnection);
}

void ListRow::paintEvent(QPaintEvent *event) {
    CardRow::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    double left = margin;
    const double right = remove_->x() - gap;
    if (!entry_.picture.isNull()) {
        painter.drawImage(QRectF(left, (height() - pictureSide) / 2.0, pictureSide, pictureSide),
                          entry_.picture);
        left += pictureSide + gap;
    }
    const auto draw = [&](const QString &text, const QFont &font, const QColor &ink) {
        painter.setFont(font);
        painter.setPen(ink);
        const QFontMetricsF metrics(font, this);
        const QString shown = metrics.elidedText(text, Qt::ElideRight, right - left);
        painter.drawText(QRectF(left, 0, right - left, height()), Qt::AlignVCenter | Qt::AlignLeft, shown);
        left += metrics.horizontalAdvance(shown) + gap;
    };
    draw(entry_.text, look().font(13), look().palette().text);
    draw(entry_.detail, look().font(11), look().palette().secondaryText);
}

QAccessibleInterface *ListRow::makeAccessible() {
    return new QAccessibleWidget(this, QAccessible::ListItem);
}

} // namespace pavonel
