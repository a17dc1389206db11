#include "UI/Controls/ListRow.h"

#include "Core/Characters.h"
#include "UI/Controls/Button.h"

#include <QAccessibleWidget>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int gap = 10;

QString onOneLine(const QString &text) {
    constexpr qsizetype longestShown = 400; // characters; no window is as wide
    return beginning(text, longestShown).simplified();
}

} // namespace

ListRow::ListRow(Look &look, const Entry &entry, std::function<void()> remove)
    : CardRow(look), entry_{onOneLine(entry.text), onOneLine(entry.detail), entry.picture},
      remove_(
          Button::ofSymbol(QStringLiteral("xmark.circle.fill"), QStringLiteral("Remove ") + entry_.text)) {
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
    draw(painter, QRectF(margin, 0, remove_->x() - gap - margin, height()), entry_, look(),
         look().palette().text, look().palette().secondaryText);
}

void ListRow::draw(QPainter &painter, const QRectF &place, const Entry &entry, const Look &look,
                   const QColor &ink, const QColor &detailInk) {
    QRectF room = place;
    if (!entry.picture.isNull()) {
        painter.drawImage(
            QRectF(room.left(), room.center().y() - pictureSide / 2.0, pictureSide, pictureSide),
            entry.picture);
        room.setLeft(room.left() + pictureSide + gap);
    }
    const auto write = [&](const QString &text, const QFont &font, const QColor &colour) {
        painter.setFont(font);
        painter.setPen(colour);
        const QFontMetricsF metrics(font, painter.device());
        const QString shown = metrics.elidedText(text, Qt::ElideRight, room.width());
        painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft, shown);
        room.setLeft(room.left() + metrics.horizontalAdvance(shown) + gap);
    };
    write(entry.text, look.font(13), ink);
    write(entry.detail, look.font(11), detailInk);
}

QAccessibleInterface *ListRow::makeAccessible() {
    return new QAccessibleWidget(this, QAccessible::ListItem);
}

} // namespace pavonel
