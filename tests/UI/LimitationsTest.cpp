#include "support/OpenSettings.h"

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// What each service cannot do here stands on the page where it matters.
class Limitations : public ::testing::Test {
protected:
    OpenSettings open;

    QStringList textsOf(Page page) {
        open.show(page);
        return open.texts();
    }
    void expectOn(Page page, QString &reason) {
        const QString sentence = u"This desktop cannot do it, for reason %1."_s.arg(++reasons_);
        EXPECT_FALSE(textsOf(page).contains(sentence));
        reason = sentence;
        open.show(Page::wellness); // the page is made anew
        EXPECT_TRUE(textsOf(page).contains(sentence));
        reason.clear();
        open.show(Page::wellness);
        EXPECT_FALSE(textsOf(page).contains(sentence)) << "nothing when all is well";
    }

private:
    int reasons_ = 0;
};

} // namespace

TEST_F(Limitations, of_the_pointer_stand_on_the_page_of_breaks) {
    expectOn(Page::breaks, open.platform.mouse.reason);
}

TEST_F(Limitations, of_the_sensors_stand_on_the_page_of_pausing) {
    expectOn(Page::pausing, open.platform.windows.reason);
    expectOn(Page::pausing, open.platform.audio.reason);
    expectOn(Page::pausing, open.platform.idle.reason);
    expectOn(Page::pausing, open.platform.apps.reason);
}

TEST_F(Limitations, of_the_break_screen_and_the_sounds_stand_on_the_page_of_appearance) {
    expectOn(Page::appearance, open.platform.layers.reason);
    expectOn(Page::appearance, open.platform.fakeSounds.reason);
}

TEST_F(Limitations, of_the_system_stand_on_the_page_of_advanced_things) {
    expectOn(Page::advanced, open.platform.login.reason);
    expectOn(Page::advanced, open.platform.keys.reason);
    expectOn(Page::advanced, open.platform.menuBar.reason);
    expectOn(Page::advanced, open.platform.powerEvents.reason);
    expectOn(Page::advanced, open.platform.launcher.reason);
    open.platform.extension.possible = true;
    expectOn(Page::advanced, open.platform.extension.reason);
}

} // namespace pavonel::test
