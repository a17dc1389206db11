#include "UI/SettingsWindow/PageView.h"

#include "UI/Controls/FocusRing.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"

#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

namespace pavonel {

namespace {

constexpr int side = 28 - FocusRing::room; // everything in the column keeps that room for its ring
constexpr int top = 24;
constexpr int bottom = 24;
constexpr int widest = 668; // a switch far from its label belongs to none
constexpr int betweenCards = 14;

QWidget *column(Visuals &visuals, const PageEntry &entry, PageContext &context) {
    auto *column = new QWidget;
    column->setMaximumWidth(visuals.length(widest));
    auto *lines = new QVBoxLayout(column);
    lines->setContentsMargins({});
    lines->setSpacing(betweenCards);
    auto *head = new QVBoxLayout;
    head->setContentsMargins(FocusRing::room, 0, FocusRing::room, 4);
    head->setSpacing(4);
    head->addWidget(new Text(visuals, entry.title, Text::Style::pageTitle));
    head->addWidget(new Text(visuals, entry.subtitle, Text::Style::secondary));
    lines->addLayout(head);
    for (const Element &element : entry.content(context))
        lines->addWidget(element.make(visuals));
    lines->addStretch(1);
    return column;
}

} // namespace

PageView::PageView(Visuals &visuals, const PageEntry &entry, PageContext &context) {
    auto *content = new QWidget;
    auto *place = new QHBoxLayout(content);
    place->setContentsMargins(side, top, side, bottom);
    place->setSpacing(0);
    place->addStretch(1);
    place->addWidget(column(visuals, entry, context), 100'000); // all of the width, up to its widest
    place->addStretch(1);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins({});
    area_ = new ScrollArea(visuals, content);
    whole->addWidget(area_);
    setAccessibleName(entry.title);
}

void PageView::refresh() {
    const auto widgets = findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (auto *follower = dynamic_cast<Refreshable *>(widget))
            follower->refresh();
    }
}

void PageView::scroll(QAbstractSlider::SliderAction action) {
    area_->verticalScrollBar()->triggerAction(action);
}

} // namespace pavonel
