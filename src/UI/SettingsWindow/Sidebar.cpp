#include "UI/SettingsWindow/Sidebar.h"

#include "UI/Controls/Pixels.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/SidebarItem.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int breadth = 196;
constexpr int margin = 10;
constexpr int top = 20;
constexpr int bottom = 14;

class PageList final : public QWidget, public AccessibleControl {
public:
    std::function<void(QKeyEvent *)> onKey; ///< Before what scrolls the list takes the arrow keys.

    QAccessibleInterface *makeAccessible() override {
        return new QAccessibleWidget(this, QAccessible::List, QStringLiteral("Pages"));
    }

protected:
    void keyPressEvent(QKeyEvent *event) override { onKey(event); }
};

QLayout *brand(Look &look) {
    auto *lines = new QVBoxLayout;
    lines->setContentsMargins(margin, 0, 0, 0);
    lines->setSpacing(2);
    lines->addWidget(new Text(look, QStringLiteral("Pavonel"), Text::Style::brand));
    lines->addWidget(new Text(look, QStringLiteral("Version 1.0"), Text::Style::note));
    return lines;
}

} // namespace

Sidebar::Sidebar(Look &look) : look_(look) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(margin, top, margin + 1, bottom);
    auto *list = new PageList;
    list->onKey = [this](QKeyEvent *event) { keyPressEvent(event); };
    auto *lines = new QVBoxLayout(list);
    lines->setContentsMargins({});
    lines->setSpacing(2);
    for (const PageEntry &entry : allPages()) {
        auto *item = new SidebarItem(look, entry.title, entry.symbol);
        connect(item, &SidebarItem::clicked, this, [this, place = items_.size()] { goTo(place); });
        lines->addWidget(item);
        items_.push_back(item);
    }
    lines->addStretch();
    area_ = new ScrollArea(look, list); // large text can need more room than the window has
    column->addWidget(area_, 1);
    column->addLayout(brand(look));
    select(allPages().front().page);
}

void Sidebar::select(Page page) {
    const auto &pages = allPages();
    const bool hasKeyboard = items_[selected_]->hasFocus();
    for (std::size_t place = 0; place < pages.size(); ++place) {
        const bool chosen = pages[place].page == page;
        items_[place]->setSelected(chosen);
        if (chosen)
            selected_ = place;
    }
    if (hasKeyboard)
        items_[selected_]->setFocus(Qt::OtherFocusReason);
    area_->ensureWidgetVisible(items_[selected_], 0, 0);
}

void Sidebar::goTo(std::size_t place) {
    if (onSelect)
        onSelect(allPages()[place].page);
}

QSize Sidebar::sizeHint() const {
    return {std::max(breadth, layout()->sizeHint().width()), 0};
}

void Sidebar::keyPressEvent(QKeyEvent *event) {
    const std::size_t last = items_.size() - 1;
    std::size_t place = 0;
    switch (event->key()) {
    case Qt::Key_Up:
        place = selected_ > 0 ? selected_ - 1 : 0;
        break;
    case Qt::Key_Down:
        place = std::min(selected_ + 1, last);
        break;
    case Qt::Key_Home:
        break;
    case Qt::Key_End:
        place = last;
        break;
    default:
        return QWidget::keyPressEvent(event);
    }
    goTo(place);
    items_[place]->setFocus(Qt::TabFocusReason);
}

void Sidebar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), look_.palette().sidebar);
    const double right = width() - 1 / devicePixelRatioF();
    drawHairline(painter, {right, 0}, {right, static_cast<double>(height())}, look_.palette().cardOutline);
}

} // namespace pavonel
