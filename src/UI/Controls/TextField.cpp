#include "UI/Controls/TextField.h"

#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Pixels.h"

#include <QAccessibleWidget>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QSignalBlocker>

namespace pavonel {

namespace {

constexpr int bodyHeight = 28;
constexpr int padding = 8;
constexpr double radius = 7;

/// Nothing but a frame: the keyboard is in what it holds.
class FrameAccessible final : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = false;
        state.focused = false;
        return state;
    }
};

} // namespace

TextField::TextField(Look &look, const QString &name, const QString &prompt)
    : look_(look), edit_(new QLineEdit(this)) {
    edit_->setFrame(false);
    edit_->setFont(look.font(13));
    edit_->setAccessibleName(name);
    edit_->setPlaceholderText(prompt);
    edit_->installEventFilter(this);
    takeColours();
    setFocusProxy(edit_);
    setFocusPolicy(edit_->focusPolicy()); // so that both have one place in the order of the keyboard
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    // Not `textEdited`, which keeps silent about what a screen reader writes.
    connect(edit_, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (onEdit)
            onEdit(text);
    });
    connect(edit_, &QLineEdit::returnPressed, this, [this] {
        if (onReturn)
            onReturn();
    });
}

QString TextField::text() const {
    return edit_->text();
}

void TextField::setText(const QString &text) {
    if (text == edit_->text())
        return;
    const QSignalBlocker silence(edit_);
    edit_->setText(text);
    if (!edit_->hasFocus())
        edit_->setCursorPosition(0);
}

QSize TextField::sizeHint() const {
    return QSize(200, look_.lineHeight(bodyHeight)) + QSize(2, 2) * FocusRing::room;
}

QRect TextField::body() const {
    constexpr int room = FocusRing::room;
    return rect().adjusted(room, room, -room, -room);
}

void TextField::resizeEvent(QResizeEvent *) {
    edit_->setGeometry(body().adjusted(padding - 2, 1, 2 - padding, -1));
}

/// The style draws a field's ground; ours is drawn here, below it.
void TextField::takeColours() {
    QPalette colours = look_.toolkitPalette();
    colours.setColor(QPalette::Base, Qt::transparent);
    for (const auto ink : {QPalette::Text, QPalette::PlaceholderText}) {
        QColor faint = colours.color(ink);
        faint.setAlphaF(0.45F);
        colours.setColor(QPalette::Disabled, ink, faint);
    }
    edit_->setPalette(colours);
}

void TextField::changeEvent(QEvent *event) {
    if (event->type() == QEvent::PaletteChange)
        takeColours();
    QWidget::changeEvent(event);
}

bool TextField::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Enter:
    case QEvent::Leave:
        update();
        break;
    case QEvent::ContextMenu:
        showMenu(static_cast<QContextMenuEvent *>(event)->globalPos());
        return true;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void TextField::showMenu(QPoint where) {
    QMenu *menu = edit_->createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setPalette(look_.toolkitPalette());
    menu->popup(where);
}

void TextField::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.45);
    const ButtonColours &colours = look_.palette().plainButton;
    drawBody(painter, body(), radius, colours.fill, colours.outline);
    if (!edit_->hasFocus())
        return;
    painter.setPen(QPen(look_.palette().accentText, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(body()), radius, radius);
}

QAccessibleInterface *TextField::makeAccessible() {
    return new FrameAccessible(this);
}

} // namespace pavonel
