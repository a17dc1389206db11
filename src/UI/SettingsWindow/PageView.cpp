#include "UI/SettingsWindow/PageView.h"

#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Visuals.h"

namespace pavonel {

namespace {

constexpr int side = 28 - FocusRing::room; // everything in the column keeps that room for its ring
constexpr int top = 24;
constexpr int bottom = 24;
constexpr int widest = 668; // a switch far from its label belongs to none
constexpr int betweenCards = 14;

QWidget *cards(const PageEntry &entry, PageContext &context) {
    auto *cards = new QWidget;
    cards->setMaximumWidth(visuals().length(widest));
    auto *lines = column(cards, {}, betweenCards);
    auto *head = column(nullptr, {FocusRing::room, 0, FocusRing::room, 4}, 4);
    head->addWidget(new Text(entry.title, Text::Style::pageTitle));
    head->addWidget(new Text(entry.subtitle, Text::Style::secondary));
    lines->addLayout(head);
    for (QWidget *widget : entry.content(context))
        lines->addWidget(widget);
    lines->addStretch(1);
    return cards;
}

/// In the middle of the page.
QWidget *content(const PageEntry &entry, PageContext &context) {
    auto *content = new QWidget;
    auto *place = line(content, {side, top, side, bottom});
    place->addStretch(1);
    place->addWidget(cards(entry, context), 100'000); // all of the width, up to its widest
    place->addStretch(1);
    return content;
}

} // namespace

PageView::PageView(const PageEntry &entry, PageContext &context) : ScrollArea(content(entry, context)) {
    setAccessibleName(entry.title);
}

void PageView::refresh() {
    const auto children = findChildren<QObject *>();
    for (QObject *child : children) {
        if (auto *follower = dynamic_cast<Follower *>(child))
            follower->refresh();
    }
}

} // namespace pavonel
