#include "UI/Panels/FloatingCountdownController.h"
#include "UI/Panels/HeadsUpController.h"
#include "UI/Panels/ToastController.h"
#include "support/Scenario.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using namespace Qt::StringLiterals;

/// Where panels cannot be placed, the desktop shows the notices.
class Notices : public ::testing::Test {
protected:
    Notices() {
        scenario.platform.layers.places = false;
        scenario.controller.onHeadsUp = [this](BreakKind kind, const QString &text) {
            headsUp.show(kind, text);
            countdown.show();
        };
        scenario.controller.onHeadsUpDismiss = [this] { headsUp.hide(); };
    }
    ~Notices() override {
        EXPECT_TRUE(scenario.platform.layers.assignments.empty()) << "a window was opened";
    }

    const std::vector<const Notifications::Notice *> &shown() const {
        return scenario.platform.notices.shown;
    }
    QStringList labels() const {
        QStringList all;
        for (const auto &button : shown().front()->buttons)
            all.append(button.label);
        return all;
    }
    void press(const QString &label) {
        const auto notice = *shown().front(); // what is pressed may take it away
        const auto button = std::ranges::find(notice.buttons, label, &Notifications::Button::label);
        ASSERT_NE(button, notice.buttons.end());
        button->action();
    }
    void runUpToNotice() {
        scenario.advance(1170);
        ASSERT_EQ(shown().size(), 1U);
    }

    Scenario scenario;
    HeadsUpController headsUp{scenario.platform, scenario.platform.notices, scenario.controller,
                              scenario.settings};
    FloatingCountdownController countdown{scenario.platform, scenario.platform.mouse, scenario.controller};
    ToastController toast{scenario.platform, scenario.platform.notices};
};

} // namespace

TEST_F(Notices, of_a_break_offer_what_is_permitted) {
    runUpToNotice();
    EXPECT_EQ(shown().front()->title, u"Micro break coming up"_s);
    EXPECT_EQ(labels(), (QStringList{u"Start now"_s, u"+1 min"_s, u"+5 min"_s, u"Skip"_s}));
    headsUp.hide();
    EXPECT_TRUE(shown().empty());
    scenario.settings.strictMode = true;
    headsUp.show(BreakKind::micro, u"Micro break"_s);
    EXPECT_EQ(labels(), QStringList{u"Start now"_s});
}

TEST_F(Notices, of_a_break_start_it) {
    runUpToNotice();
    press(u"Start now"_s);
    EXPECT_EQ(scenario.controller.phase, Phase::breaking);
    EXPECT_TRUE(shown().empty());
}

TEST_F(Notices, of_a_break_postpone_it) {
    runUpToNotice();
    press(u"+5 min"_s);
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(scenario.controller.next()->remaining, 330);
}

TEST_F(Notices, of_a_break_skip_it) {
    runUpToNotice();
    press(u"Skip"_s);
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(scenario.controller.next()->remaining, 1200);
}

TEST_F(Notices, of_a_break_do_nothing_that_is_no_longer_permitted) {
    runUpToNotice();
    scenario.settings.strictMode = true;
    press(u"Skip"_s);
    press(u"+1 min"_s);
    EXPECT_EQ(scenario.controller.next()->remaining, 30);
    EXPECT_EQ(shown().size(), 1U);
}

TEST_F(Notices, that_are_shown_again_take_the_place_of_the_last) {
    for (int round = 0; round < 3; ++round)
        headsUp.show(BreakKind::micro, u"Micro break"_s);
    EXPECT_EQ(shown().size(), 1U);
}

TEST_F(Notices, of_posture_and_blinking_go_by_themselves) {
    toast.show(u"Blink slowly a few times."_s, u"eye"_s);
    ASSERT_EQ(shown().size(), 1U);
    EXPECT_EQ(shown().front()->title, u"Blink slowly a few times."_s);
    EXPECT_TRUE(shown().front()->buttons.empty());
    scenario.platform.loop.advance(6);
    EXPECT_TRUE(shown().empty());
}

} // namespace pavonel::test
