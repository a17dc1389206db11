#include "support/OpenSettings.h"

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

struct PageTexts {
    Page page;
    QStringList texts; ///< In reading order, beginning with the title; others may stand between them.
};

void PrintTo(const PageTexts &page, std::ostream *out) {
    *out << page.texts.front().toStdString();
}

const std::vector<PageTexts> pages{
    {Page::breaks,
     {u"Breaks"_s,
      u"How often you step away and for how long."_s,
      u"Micro break"_s,
      u"The 20-20-20 rule"_s,
      u"Enabled"_s,
      u"Every"_s,
      u"For"_s,
      u"Long break"_s,
      u"Get up and move"_s,
      u"Enabled"_s,
      u"Every"_s,
      u"For"_s,
      u"Heads-up"_s,
      u"Warn me before a break"_s,
      u"Countdown follows the cursor"_s,
      u"Behaviour"_s,
      u"Breaks can be skipped"_s,
      u"Breaks can be postponed"_s,
      u"Strict mode"_s,
      u"No skipping, no postponing"_s}},
    {Page::planned,
     {u"Planned"_s, u"Breaks at a fixed time, like a lunch pause."_s, u"Your schedule"_s,
      u"Planned breaks still wait for meetings, calls and focus apps"_s, u"No planned breaks yet"_s}},
    {Page::phone,
     {u"iPhone"_s, u"The same break on your iPhone — or breaks it runs on its own."_s,
      u"A break on the Mac is only half a break if you pick up your phone. Pair the two and the same "
      "countdown appears there — on the Lock Screen and in the Dynamic Island — and clears when you end the "
      "break here.\n\nAway from the Mac, the app keeps its own hours: breaks as often and as long as you "
      "like. While this Mac is running Pavonel, this Mac decides."_s,
      u"The phone is reached through the pairing service at pair.example; without it, breaks stay on this computer."_s,
      u"Only the break itself travels to the phone: its kind, its name and when it ends. Settings and "
      "statistics never leave this computer."_s}},
    {Page::pausing,
     {u"Pausing"_s, u"When Pavonel should stay out of your way."_s, u"Pause automatically"_s,
      u"The timer holds while one of these is in front"_s, u"In fullscreen apps"_s,
      u"While the microphone is in use"_s, u"Meetings and calls"_s, u"While video or audio is playing"_s,
      u"During screen recording or sharing"_s, u"Natural breaks"_s, u"Reset the timer when I step away"_s,
      u"After"_s, u"Focus apps"_s, u"None yet"_s}},
    {Page::appearance,
     {u"Appearance"_s, u"How the break screen looks and sounds."_s, u"Break screen"_s, u"No custom image"_s,
      u"Sounds"_s, u"Play sounds"_s, u"Break starts"_s, u"Break ends"_s, u"Break messages"_s,
      u"One is picked at random for each break"_s}},
    {Page::wellness,
     {u"Wellness"_s, u"Gentle nudges between breaks."_s, u"Posture"_s,
      u"Shoulders back, screen at eye level"_s, u"Enabled"_s, u"Every"_s, u"Blinking"_s,
      u"Screens make you blink less"_s, u"Enabled"_s, u"Every"_s,
      u"Reminders appear as a small strip at the top of the screen for a few seconds. Nothing to click, and "
      "they never show during a break."_s}},
    {Page::stats,
     {u"Stats"_s, u"What your screen day looked like."_s, u"Last 7 days"_s, u"Micro breaks: 0"_s,
      u"Long breaks: 0"_s, u"Planned: 0"_s, u"Skipped: 0"_s, u"On breaks: 0s"_s}},
    {Page::advanced,
     {u"Advanced"_s, u"System behaviour and automation."_s, u"Updates"_s, u"Version 1.2.0"_s,
      u"Not checked yet"_s, u"Check automatically"_s, u"Once a day, in the background"_s, u"System"_s,
      u"Launch at login"_s, u"Global shortcuts"_s, u"⌃⌥⌘B take a break · ⌃⌥⌘S skip · ⌃⌥⌘P pause"_s,
      u"Automation"_s, u"When a break starts"_s, u"When a break ends"_s,
      u"AppleScript, a .scpt path, or shortcut:Name"_s}},
};

class EveryPage : public testing::TestWithParam<PageTexts> {
protected:
    OpenSettings open;
};

} // namespace

TEST_P(EveryPage, has_its_texts_letter_for_letter_and_in_their_order) {
    open.show(GetParam().page);
    const QStringList shown = open.texts();
    qsizetype place = shown.indexOf(u"Version 1.0"_s); // the sidebar comes first
    for (const QString &text : GetParam().texts) {
        const qsizetype next = shown.indexOf(text, place + 1);
        EXPECT_GT(next, place) << qPrintable(text) << " in " << qPrintable(shown.join(u" | "_s));
        place = std::max(place, next);
    }
}

TEST_P(EveryPage, is_in_the_sidebar_under_its_title) {
    open.show();
    QAccessibleInterface *entry = open.find(QAccessible::RadioButton, GetParam().texts.front());
    ASSERT_NE(entry, nullptr);
    entry->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(open.controller.selection.page, GetParam().page);
    EXPECT_NE(open.find(QAccessible::Heading, GetParam().texts.front()), nullptr);
}

/// A script that knows only the visible names finds each control once in its card.
TEST_P(EveryPage, names_each_control_once_in_its_card) {
    open.show(GetParam().page);
    QAccessibleInterface *root = QAccessible::queryAccessibleInterface(open.window());
    for (QAccessibleInterface *group : allBelow(root)) {
        if (group->role() != QAccessible::Grouping)
            continue;
        QStringList names;
        for (QAccessibleInterface *control : allBelow(group)) {
            if (!control->state().focusable)
                continue;
            const QString name = control->text(QAccessible::Name);
            EXPECT_FALSE(name.isEmpty()) << control->object()->metaObject()->className();
            EXPECT_FALSE(names.contains(name)) << qPrintable(name);
            names.append(name);
        }
        EXPECT_FALSE(group->text(QAccessible::Name).isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, EveryPage, testing::ValuesIn(pages));

} // namespace pavonel::test
