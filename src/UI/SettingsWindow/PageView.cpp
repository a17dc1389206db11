#include "UI/SettingsWindow/PageView.h"

#include "UI/Controls/Layouts.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"

namespace pavonel {

namespace {

constexpr int side = 28 - FocusRing::room; // everything in the column keeps that room for its ring
constexpr int top = 24;
constexpr int bottom = 24;
constexpr int widest = 668; // a switch far from its label belongs to none
constexpr int betweenCards = 14;

QWidget *cards(Visuals &visuals, const PageEntry &entry, PageContext &context) {
    auto *cards = new QWidget;
    cards->setMaximumWidth(visuals.length(widest));
    auto *lines = column(cards, {}, betweenCards);
    auto *head = column(nullptr, {FocusRing::room, 0, FocusRing::room, 4}, 4);
    head->addWidget(new Text(visuals, entry.title, Text::Style::pageTitle));
    head->addWidget(new Text(visuals, entry.subtitle, Text::Style::secondary));
    lines->addLayout(head);
    for (const Element &element : entry.content(context))
        lines->addWidget(element(visuals));
    lines->addStretch(1);
    return cards;
}

/// In the middle of the page.
QWidget *content(Visuals &visuals, const PageEntry &entry, PageContext &context) {
    auto *content = new QWidget;
    auto *place = line(content, {side, top, side, bottom});
    place->addStretch(1);
    place->addWidget(cards(visuals, entry, context), 100'000); // all of the width, up to its widest
    place->addStretch(1);
    return content;
}

} // namespace

PageView::PageView(Visuals &visuals, const PageEntry &entry, PageContext &context)
    : ScrollArea(visuals, content(visuals, entry, context)) {
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
