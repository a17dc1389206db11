#include "UI/Controls/PopUpList.h"

#include "UI/Controls/Pixels.h"
#include "UI/Controls/PopUpItem.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/ScrollThumb.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int padding = 5;
constexpr int tallest = 440;
constexpr int halo = 22; // the shadow around it, where windows are blended
constexpr double radius = 10;
constexpr Seconds pauseInTyping = 1;

/// Where there is no such place, the first one.
int within(int first, int last, int place) {
    return std::max(first, std::min(last, place));
}

/// Soft, and a little below.
void drawShadow(QPainter &painter, const QRectF &body) {
    constexpr int drop = 4;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 3));
    for (int reach = 0; reach < halo - drop; ++reach)
        painter.drawRoundedRect(body.adjusted(-reach, drop - reach, reach, drop + reach), radius + reach,
                                radius + reach);
}

} // namespace

PopUpList::PopUpList(Look &look, const QStringList &choices, const QString &current, QWidget *button)
    : QWidget(button, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint), look_(look) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground, look.canBlend());
    auto *column = new QWidget;
    auto *lines = new QVBoxLayout(column);
    lines->setContentsMargins({});
    lines->setSpacing(0);
    for (const QString &choice : choices) {
        const auto mark = choice == current ? PopUpItem::Mark::current : PopUpItem::Mark::none;
        auto *item = new PopUpItem(look, choice, mark);
        connect(item, &PopUpItem::clicked, this, [this, choice] { take(choice); });
        lines->addWidget(item);
        items_.push_back(item);
    }
    auto *whole = new QVBoxLayout(this);
    const int margin = padding + edge();
    whole->setContentsMargins(margin, margin, margin, margin);
    whole->addWidget(new ScrollArea(look, column));
    if (column->sizeHint().height() + 2 * padding > look.length(tallest))
        lines->setContentsMargins(0, 0, ScrollThumb::width - 2, 0);
    const QSize content = column->sizeHint();
    resize(content.width() + 2 * padding, std::min(content.height() + 2 * padding, look.length(tallest)));
}

int PopUpList::edge() const {
    return testAttribute(Qt::WA_TranslucentBackground) ? halo : 0;
}

void PopUpList::openOver(const QRect &button, int textInset) {
    const QRect screen = parentWidget()->screen()->availableGeometry();
    const auto current =
        std::find_if(items_.begin(), items_.end(), [](auto *item) { return item->isCurrent(); });
    const auto index = static_cast<int>(current == items_.end() ? 0 : current - items_.begin());
    const int itemHeight = items_.empty() ? 0 : items_.front()->sizeHint().height();
    const int aside = padding + PopUpItem::textInset - textInset;
    const QSize size(std::max(width(), button.width() + aside), std::min(height(), screen.height()));
    const int shown = size.height() - 2 * padding;
    const int hidden = std::max(0, static_cast<int>(items_.size()) * itemHeight - shown);
    const int scrolled = std::clamp(index * itemHeight + (itemHeight - shown) / 2, 0, hidden);
    const int top =
        button.top() + (button.height() - itemHeight) / 2 - (index * itemHeight - scrolled) - padding;
    const QRect body(within(screen.left(), screen.right() + 1 - size.width(), button.left() - aside),
                     within(screen.top(), screen.bottom() + 1 - size.height(), top), size.width(),
                     size.height());
    setGeometry(body.adjusted(-edge(), -edge(), edge(), edge()));
    show();
    if (!items_.empty())
        items_[static_cast<std::size_t>(index)]->setFocus(Qt::PopupFocusReason);
    findChild<QScrollArea *>()->verticalScrollBar()->setValue(scrolled);
}

void PopUpList::take(const QString &choice) {
    const auto report = onChoice;
    close();
    if (report)
        report(choice);
}

void PopUpList::move(int by) {
    const auto lit = std::find_if(items_.begin(), items_.end(), [](auto *item) { return item->hasFocus(); });
    const auto last = static_cast<std::ptrdiff_t>(items_.size()) - 1;
    if (last < 0)
        return;
    const auto place = lit == items_.end() ? (by > 0 ? -1 : last + 1) : lit - items_.begin();
    items_[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(place + by, 0, last))]->setFocus(
        Qt::TabFocusReason);
    findChild<QScrollArea *>()->ensureWidgetVisible(focusWidget(), 0, 0);
}

bool PopUpList::moveTo(const QString &beginning) {
    const auto found = std::find_if(items_.begin(), items_.end(), [&](const PopUpItem *item) {
        return item->text().startsWith(beginning, Qt::CaseInsensitive);
    });
    if (found == items_.end())
        return false;
    (*found)->setFocus(Qt::TabFocusReason);
    return true;
}

void PopUpList::type(const QString &text) {
    typed_ += text;
    if (!moveTo(typed_))
        moveTo(typed_ = text);
    pause_ = look_.loop().after(pauseInTyping, [this] { typed_.clear(); });
}

void PopUpList::keyPressEvent(QKeyEvent *event) {
    const int all = static_cast<int>(items_.size());
    switch (event->key()) {
    case Qt::Key_Escape:
        close();
        return;
    case Qt::Key_Up:
        return move(-1);
    case Qt::Key_Down:
        return move(1);
    case Qt::Key_Home:
        return move(-all);
    case Qt::Key_End:
        return move(all);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto *item = dynamic_cast<PopUpItem *>(focusWidget()))
            item->click();
        return;
    default:
        if (!event->text().trimmed().isEmpty())
            type(event->text());
    }
}

void PopUpList::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const Palette &palette = look_.palette();
    QColor outline = palette.text;
    outline.setAlphaF(0.18F);
    const QRectF body = rect().adjusted(edge(), edge(), -edge(), -edge());
    const bool blended = edge() > 0;
    if (blended)
        drawShadow(painter, body);
    else
        painter.fillRect(rect(), palette.card);
    drawBody(painter, body, blended ? radius : 0, palette.card, outline);
}

void PopUpList::mousePressEvent(QMouseEvent *event) {
    if (!rect().adjusted(edge(), edge(), -edge(), -edge()).contains(event->position().toPoint()))
        close();
}

QAccessibleInterface *PopUpList::makeAccessible() {
    return new QAccessibleWidget(this, QAccessible::List);
}

} // namespace pavonel
