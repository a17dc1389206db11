#include "UI/SettingsWindow/Page.h"

#include "UI/Controls/Layouts.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Controls/Text.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Visuals.h"

#include <algorithm>

namespace pavonel {

using namespace Qt::StringLiterals;

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

} // namespace

const std::vector<PageEntry> &allPages() {
    static const std::vector<PageEntry> pages{
        {Page::breaks, u"breaks"_s, u"Breaks"_s, u"timer"_s, u"How often you step away and for how long."_s,
         breaksPage},
        {Page::planned, u"planned"_s, u"Planned"_s, u"calendar"_s,
         u"Breaks at a fixed time, like a lunch pause."_s, plannedPage},
        {Page::phone, u"phone"_s, u"iPhone"_s, u"iphone"_s,
         u"The same break on your iPhone — or breaks it runs on its own."_s, phonePage},
        {Page::pausing, u"pausing"_s, u"Pausing"_s, u"pause.circle"_s,
         u"When Pavonel should stay out of your way."_s, pausingPage},
        {Page::appearance, u"appearance"_s, u"Appearance"_s, u"paintbrush"_s,
         u"How the break screen looks and sounds."_s, appearancePage},
        {Page::wellness, u"wellness"_s, u"Wellness"_s, u"heart"_s, u"Gentle nudges between breaks."_s,
         wellnessPage},
        {Page::stats, u"stats"_s, u"Stats"_s, u"chart.bar"_s, u"What your screen day looked like."_s,
         statsPage},
        {Page::advanced, u"advanced"_s, u"Advanced"_s, u"gearshape"_s, u"System behaviour and automation."_s,
         advancedPage},
    };
    return pages;
}

ScrollArea *makePage(Page page, PageContext &context) {
    const PageEntry &entry = *std::ranges::find(allPages(), page, &PageEntry::page);
    auto *middle = new QWidget;
    putInMiddle(middle, cards(entry, context), {side, top, side, bottom});
    auto *area = new ScrollArea(middle);
    area->setAccessibleName(entry.title);
    return area;
}

} // namespace pavonel
