#include "UI/SettingsWindow/Sidebar.h"

#include "UI/Controls/Accessibility.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/Symbol.h"

#include <QButtonGroup>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QRadioButton>
#include <QSignalBlocker>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int itemHeight = 34;
constexpr int padding = 10;
constexpr int symbolSide = 18;
constexpr double radius = 8;

constexpr int breadth = 196;
constexpr int margin = 10;
constexpr int top = 20;
constexpr int bottom = 14;

QLayout *brand(Visuals &visuals) {
    auto *lines = column(nullptr, {margin, 0, 0, 0}, 2);
    lines->addWidget(new Text(visuals, QStringLiteral("Pavonel"), Text::Style::brand));
    lines->addWidget(new Text(visuals, QStringLiteral("Version 1.0"), Text::Style::note));
    return lines;
}

/// A page's entry in the sidebar.
class SidebarItem final : public QRadioButton {
public:
    SidebarItem(Visuals &visuals, const QString &title, const QString &symbol)
        : QRadioButton(title), visuals_(visuals), symbol_(symbol) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override {
        const QFontMetrics metrics(visuals_.font(13, QFont::DemiBold));
        return {metrics.horizontalAdvance(text()) + visuals_.length(symbolSide) + 3 * padding,
                visuals_.lineHeight(itemHeight)};
    }

protected:
    bool hitButton(const QPoint &place) const override { return rect().contains(place); }
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Palette &palette = visuals_.palette();
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground());
        painter.drawRoundedRect(rect(), radius, radius);
        const int side = visuals_.length(symbolSide);
        const QColor symbolInk = isChecked() ? palette.accentText : palette.secondaryText;
        painter.drawImage(QPointF(padding, (height() - side) / 2.0),
                          Symbol::image(symbol_, side, symbolInk, devicePixelRatioF()));
        painter.setFont(visuals_.font(13, isChecked() ? QFont::DemiBold : QFont::Medium));
        painter.setPen(isChecked() ? palette.accentText : palette.text);
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
        if (isChecked())
            return visuals_.palette().selection;
        QColor veil = visuals_.palette().text;
        veil.setAlphaF(isDown() ? 0.09F : underMouse() ? 0.05F : 0);
        return veil;
    }

    Visuals &visuals_;
    QString symbol_;
};

} // namespace

Sidebar::Sidebar(Visuals &visuals) : visuals_(visuals), items_(new QButtonGroup(this)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto *places = column(this, {margin, top, margin + 1, bottom}, -1);
    auto *list = new QWidget;
    setAccessibleRole(*list, QAccessible::Grouping);
    list->setAccessibleName(QStringLiteral("Pages"));
    auto *lines = column(list, {}, 2);
    for (const PageEntry &entry : allPages()) {
        auto *item = new SidebarItem(visuals, entry.title, entry.symbol);
        items_->addButton(item, static_cast<int>(entry.page));
        lines->addWidget(item);
    }
    lines->addStretch();
    connect(items_, &QButtonGroup::idToggled, this, [this](int page, bool on) {
        if (on && onSelect)
            onSelect(static_cast<Page>(page));
    });
    area_ = new ScrollArea(visuals, list); // large text can need more room than the window has
    places->addWidget(area_, 1);
    places->addLayout(brand(visuals));
    select(allPages().front().page);
}

void Sidebar::select(Page page) {
    const QAbstractButton *before = items_->checkedButton();
    const bool hasKeyboard = before && before->hasFocus();
    QAbstractButton *selected = items_->button(static_cast<int>(page));
    const QSignalBlocker silence(items_);
    selected->setChecked(true);
    for (QAbstractButton *item : items_->buttons())
        item->setFocusPolicy(item == selected ? Qt::TabFocus : Qt::NoFocus);
    if (hasKeyboard)
        selected->setFocus(Qt::OtherFocusReason);
    area_->ensureWidgetVisible(selected, 0, 0);
}

QSize Sidebar::sizeHint() const {
    return {std::max(breadth, layout()->sizeHint().width()), 0};
}

/// Qt knows the arrow keys by itself.
void Sidebar::keyPressEvent(QKeyEvent *event) {
    if (event->key() != Qt::Key_Home && event->key() != Qt::Key_End)
        return QWidget::keyPressEvent(event);
    const auto items = items_->buttons();
    QAbstractButton *item = event->key() == Qt::Key_Home ? items.front() : items.back();
    item->click();
    item->setFocus(Qt::TabFocusReason);
}

void Sidebar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), visuals_.palette().sidebar);
    const double right = width() - 1 / devicePixelRatioF();
    drawHairline(painter, {right, 0}, {right, static_cast<double>(height())}, visuals_.palette().cardOutline);
}

} // namespace pavonel
