#include "UI/SettingsWindow/Sidebar.h"

#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Button.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QButtonGroup>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int breadth = 196;
constexpr int margin = 10;
constexpr int top = 20;
constexpr int bottom = 14;

QLayout *brand() {
    auto *lines = column(nullptr, {margin, 0, 0, 0}, 2);
    lines->addWidget(new Text(QStringLiteral("Pavonel"), Text::Style::brand));
    lines->addWidget(new Text(QStringLiteral("Version 1.0"), Text::Style::note));
    return lines;
}

} // namespace

Sidebar::Sidebar() : items_(new QButtonGroup(this)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto *places = column(this, {margin, top, margin + 1, bottom}, -1);
    auto *list = new QWidget;
    setAccessibleRole(*list, QAccessible::Grouping);
    list->setAccessibleName(QStringLiteral("Pages"));
    auto *lines = column(list, {}, 2);
    for (const PageEntry &entry : allPages()) {
        auto *item = new Button(entry.title, ButtonRole::entry, entry.symbol);
        item->setCheckable(true);
        item->setAutoExclusive(true); // to assistive technology, too, one of several
        item->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        items_->addButton(item, static_cast<int>(entry.page));
        lines->addWidget(item);
    }
    lines->addStretch();
    connect(items_, &QButtonGroup::idToggled, this, [this](int page, bool on) {
        if (on && onSelect)
            onSelect(static_cast<Page>(page));
    });
    area_ = new ScrollArea(list); // large text can need more room than the window has
    places->addWidget(area_, 1);
    places->addLayout(brand());
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
    painter.fillRect(rect(), visuals().palette().sidebar);
    const double right = width() - 1 / devicePixelRatioF();
    drawHairline(painter, {right, 0}, {right, static_cast<double>(height())},
                 visuals().palette().cardOutline);
}

} // namespace pavonel
