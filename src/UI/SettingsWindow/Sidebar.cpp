#include "UI/SettingsWindow/Sidebar.h"

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/Symbol.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <functional>
#include <utility>

namespace pavonel {

namespace {

constexpr int itemHeight = 34;
constexpr int padding = 10;
constexpr int symbolSide = 18;
constexpr double radius = 8;

/// What assistive technology is told of a button that is an entry of a list.
class ListItemAccessible final : public QAccessibleWidget {
public:
    ListItemAccessible(QAbstractButton &item, std::function<bool()> isSelected)
        : QAccessibleWidget(&item, QAccessible::ListItem), item_(item), isSelected_(std::move(isSelected)) {}

    QString text(QAccessible::Text type) const override {
        return type == QAccessible::Name ? item_.text() : QAccessibleWidget::text(type);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        state.selectable = true;
        state.selected = isSelected_();
        return state;
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString &action) override {
        if (action == pressAction())
            item_.click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    QAbstractButton &item_;
    std::function<bool()> isSelected_;
};

constexpr int breadth = 196;
constexpr int margin = 10;
constexpr int top = 20;
constexpr int bottom = 14;

class PageList final : public QWidget {
public:
    std::function<void(QKeyEvent *)> onKey; ///< Before what scrolls the list takes the arrow keys.

protected:
    void keyPressEvent(QKeyEvent *event) override { onKey(event); }
};

QLayout *brand(Visuals &visuals) {
    auto *lines = column(nullptr, {margin, 0, 0, 0}, 2);
    lines->addWidget(new Text(visuals, QStringLiteral("Pavonel"), Text::Style::brand));
    lines->addWidget(new Text(visuals, QStringLiteral("Version 1.0"), Text::Style::note));
    return lines;
}

} // namespace

/// A page's entry in the sidebar.
class SidebarItem : public QAbstractButton, public AccessibleControl {
public:
    SidebarItem(Visuals &visuals, const QString &title, const QString &symbol)
        : visuals_(visuals), symbol_(symbol) {
        setText(title);
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    /// Only the selected one is reached by the Tab key.
    void setSelected(bool selected) {
        if (selected == selected_)
            return;
        selected_ = selected;
        setFocusPolicy(selected ? Qt::TabFocus : Qt::NoFocus);
        QAccessible::State changed;
        changed.selected = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
        update();
    }

    QSize sizeHint() const override {
        const QFontMetrics metrics(visuals_.font(13, QFont::DemiBold));
        return {metrics.horizontalAdvance(text()) + visuals_.length(symbolSide) + 3 * padding,
                visuals_.lineHeight(itemHeight)};
    }

    QAccessibleInterface *makeAccessible() override {
        return new ListItemAccessible(*this, [this] { return selected_; });
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Palette &palette = visuals_.palette();
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground());
        painter.drawRoundedRect(rect(), radius, radius);
        const int side = visuals_.length(symbolSide);
        const QColor symbolInk = selected_ ? palette.accentText : palette.secondaryText;
        painter.drawImage(QPointF(padding, (height() - side) / 2.0),
                          Symbol::image(symbol_, side, symbolInk, devicePixelRatioF()));
        painter.setFont(visuals_.font(13, selected_ ? QFont::DemiBold : QFont::Medium));
        painter.setPen(selected_ ? palette.accentText : palette.text);
        painter.drawText(rect().adjusted(padding + side + padding, 0, -padding, 0),
                         Qt::AlignVCenter | Qt::AlignLeft, text());
        if (FocusRing::isOn(*this)) {
            painter.setPen(QPen(palette.accentText, 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius - 1, radius - 1);
        }
    }

private:
    QColor ground() const {
        if (selected_)
            return visuals_.palette().selection;
        QColor veil = visuals_.palette().text;
        veil.setAlphaF(isDown() ? 0.09F : underMouse() ? 0.05F : 0);
        return veil;
    }

    Visuals &visuals_;
    QString symbol_;
    bool selected_ = false;
};

Sidebar::Sidebar(Visuals &visuals) : visuals_(visuals) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto *places = column(this, {margin, top, margin + 1, bottom}, -1);
    auto *list = new PageList;
    setAccessibleRole(*list, QAccessible::List);
    list->setAccessibleName(QStringLiteral("Pages"));
    list->onKey = [this](QKeyEvent *event) { keyPressEvent(event); };
    auto *lines = column(list, {}, 2);
    for (const PageEntry &entry : allPages()) {
        auto *item = new SidebarItem(visuals, entry.title, entry.symbol);
        connect(item, &SidebarItem::clicked, this, [this, place = items_.size()] { goTo(place); });
        lines->addWidget(item);
        items_.push_back(item);
    }
    lines->addStretch();
    area_ = new ScrollArea(visuals, list); // large text can need more room than the window has
    places->addWidget(area_, 1);
    places->addLayout(brand(visuals));
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
    painter.fillRect(rect(), visuals_.palette().sidebar);
    const double right = width() - 1 / devicePixelRatioF();
    drawHairline(painter, {right, 0}, {right, static_cast<double>(height())}, visuals_.palette().cardOutline);
}

} // namespace pavonel
