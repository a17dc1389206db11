#include "UI/Controls/ListRow.h"

#include "Core/Characters.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/LineEdit.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Visuals.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

#include <utility>

namespace pavonel {

namespace {

constexpr int gap = 10;
constexpr qsizetype longestTold = 2000; // characters in the tooltip

QString onOneLine(const QString &text) {
    constexpr qsizetype longestShown = 400; // characters; no window is as wide
    return beginning(text, longestShown).simplified();
}

} // namespace

int ListRow::pictureSide() {
    return visuals().length(24);
}

ListRow::ListRow(const Entry &entry, std::function<void()> remove, std::function<void(const QString &)> edit)
    : whole_(entry.text),
      edit_(std::move(edit)), entry_{onOneLine(entry.text), onOneLine(entry.detail), entry.picture},
      remove_(
          Button::ofSymbol(QStringLiteral("xmark.circle.fill"), QStringLiteral("Remove ") + entry_.text)) {
    // The symbol, not the room around it, ends where the other rows end.
    layout()->setContentsMargins(margin, 0, margin - besideSymbol(), 0);
    static_cast<QHBoxLayout *>(layout())->addStretch();
    add(remove_);
    setAccessibleRole(*this, QAccessible::ListItem);
    setAccessibleName(entry_.text);
    setAccessibleDescription(entry_.detail);
    setToolTip(QStringLiteral("<p>%1</p>").arg(beginning(entry.text, longestTold).toHtmlEscaped()) +
               (edit_ ? QStringLiteral("<p>Double-click or press F2 to edit it.</p>") : QString()));
    // From the loop, since the button that is being clicked can go with the row.
    connect(remove_, &Button::clicked, this, std::move(remove), Qt::QueuedConnection);
}

void ListRow::mouseDoubleClickEvent(QMouseEvent *) {
    beginEditing();
}

void ListRow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_F2)
        beginEditing();
    else if (event->key() == Qt::Key_Escape && field_)
        endEditing();
    else
        CardRow::keyPressEvent(event);
}

void ListRow::beginEditing() {
    if (!edit_ || field_)
        return;
    field_ = lineEdit(QStringLiteral("Edit ") + entry_.text);
    field_->setParent(this);
    field_->setText(whole_);
    const int fieldHeight = field_->sizeHint().height();
    const int left = margin - FocusRing::room;
    field_->setGeometry(left, (height() - fieldHeight) / 2, remove_->x() - left, fieldHeight);
    field_->show();
    field_->setFocus(Qt::OtherFocusReason);
    // From the loop, since the field goes with the row.
    connect(
        field_, &QLineEdit::editingFinished, this,
        [this] {
            if (!field_)
                return;
            const QString text = field_->text().trimmed();
            endEditing();
            if (!text.isEmpty() && text != whole_)
                edit_(text);
        },
        Qt::QueuedConnection);
}

void ListRow::endEditing() {
    const bool hadKeyboard = field_->hasFocus();
    delete field_;
    if (hadKeyboard)
        remove_->setFocus(Qt::OtherFocusReason);
    update();
}

void ListRow::paintEvent(QPaintEvent *event) {
    CardRow::paintEvent(event);
    if (field_)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    draw(painter, QRectF(margin, 0, remove_->x() - gap - margin, height()), entry_, visuals().palette().text,
         visuals().palette().secondaryText);
}

void ListRow::draw(QPainter &painter, const QRectF &place, const Entry &entry, const QColor &ink,
                   const QColor &detailInk) {
    QRectF room = place;
    if (!entry.picture.isNull()) {
        painter.drawImage(
            QRectF(room.left(), room.center().y() - pictureSide() / 2.0, pictureSide(), pictureSide()),
            entry.picture);
        room.setLeft(room.left() + pictureSide() + gap);
    }
    const auto write = [&](const QString &text, const QFont &font, const QColor &colour) {
        painter.setFont(font);
        painter.setPen(colour);
        const QFontMetricsF metrics(font, painter.device());
        const QString shown = metrics.elidedText(text, Qt::ElideRight, room.width());
        painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft, shown);
        room.setLeft(room.left() + metrics.horizontalAdvance(shown) + gap);
    };
    write(entry.text, visuals().font(13), ink);
    write(entry.detail, visuals().font(11), detailInk);
}

UndoRow::UndoRow()
    : text_(new Text({}, Text::Style::secondary)), button_(new Button(QStringLiteral("Undo"))) {
    addLines({text_});
    add(button_);
    hide();
    connect(button_, &Button::clicked, this, [this] {
        hide();
        std::exchange(undo_, {})();
    });
}

void UndoRow::offer(const QString &what, std::function<void()> undo) {
    constexpr qsizetype longest = 60;
    undo_ = std::move(undo);
    const QString name = beginning(what.simplified(), longest);
    text_->setText(name.isEmpty() ? QStringLiteral("Removed") : QStringLiteral("Removed “%1”").arg(name));
    button_->setAccessibleName(QStringLiteral("Undo removing ") + name);
    show();
    announce(*text_);
}

} // namespace pavonel
