#include "UI/Controls/Button.h"
#include "UI/Controls/Switch.h"
#include "support/OpenSettings.h"
#include "support/windows.h"

#include <QAccessible>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

class UpdateCard : public ::testing::Test {
protected:
    OpenSettings open;
    Updater &updater = open.updater;

    void enter(const Updater::State &state) {
        updater.state = state;
        open.show(Page::advanced);
    }

    /// The texts of the card, from below its title.
    QStringList texts() {
        const QStringList all = open.texts();
        return all.mid(all.indexOf(u"Updates"_s) + 1,
                       all.indexOf(u"Check automatically"_s) - all.indexOf(u"Updates"_s) - 1);
    }
    Button *button(const QString &name) {
        return open.widget<Button>(QAccessible::Button, name, u"Updates"_s);
    }
    QStringList buttons() {
        QStringList found;
        for (const QString &name : {u"Check now"_s, u"Install and restart"_s}) {
            if (button(name))
                found.append(name);
        }
        return found;
    }
    QString version() { return u"Version "_s + updater.currentVersion(); }
};

} // namespace

TEST_F(UpdateCard, idle_tells_of_the_last_check) {
    enter(Updater::Idle{});
    EXPECT_EQ(texts(), (QStringList{version(), u"Not checked yet"_s}));
    EXPECT_EQ(buttons(), QStringList{u"Check now"_s});
    updater.lastCheck = open.platform.loop.now() + -301;
    open.settle();
    EXPECT_EQ(texts(), (QStringList{version(), u"Last checked 5 minutes ago"_s}));
    open.platform.loop.advance(120);
    EXPECT_EQ(texts(), (QStringList{version(), u"Last checked 7 minutes ago"_s})) << "time passes";
}

TEST_F(UpdateCard, checks_when_asked) {
    enter(Updater::Idle{});
    click(*button(u"Check now"_s));
    EXPECT_EQ(updater.state.get(), Updater::State(Updater::Checking{}));
    open.settle();
    EXPECT_EQ(texts(), (QStringList{version(), u"Checking…"_s}));
    EXPECT_EQ(buttons(), QStringList());
    ASSERT_EQ(open.platform.web.exchanges.size(), 1U);
    open.platform.web.exchanges[0].answer({});
    open.settle();
    EXPECT_EQ(texts(), (QStringList{version(), u"Could not reach the update server."_s}))
        << "it was interactive";
}

TEST_F(UpdateCard, up_to_date_says_so) {
    enter(Updater::UpToDate{});
    EXPECT_EQ(texts(), (QStringList{version(), u"You are up to date."_s}));
    EXPECT_EQ(buttons(), QStringList{u"Check now"_s});
}

TEST_F(UpdateCard, failed_tells_why) {
    enter(Updater::Failed{u"The download did not finish."_s});
    EXPECT_EQ(texts(), (QStringList{version(), u"The download did not finish."_s}));
    EXPECT_EQ(buttons(), QStringList{u"Check now"_s});
}

TEST_F(UpdateCard, available_tells_the_version_and_its_notes) {
    enter(Updater::Available{u"1.3"_s, u"Calmer fades."_s});
    EXPECT_EQ(texts(), (QStringList{version(), u"Version 1.3 is available"_s, u"Calmer fades."_s}));
    EXPECT_EQ(buttons(), QStringList{u"Install and restart"_s});
}

TEST_F(UpdateCard, downloading_shows_how_far_it_is) {
    enter(Updater::Downloading{0.4});
    EXPECT_EQ(texts(), QStringList{version()});
    EXPECT_EQ(buttons(), QStringList());
    QAccessibleInterface *bar = open.find(QAccessible::ProgressBar, u"Download"_s);
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->valueInterface()->currentValue().toDouble() /
                  bar->valueInterface()->maximumValue().toDouble(),
              0.4);
    for (const double odd : {-1.0, 7.0, std::numeric_limits<double>::quiet_NaN()}) {
        enter(Updater::Downloading{odd});
        EXPECT_FALSE(open.window()->grab().isNull());
    }
}

TEST_F(UpdateCard, ready_tells_that_it_will_restart) {
    enter(Updater::ReadyToRestart{});
    EXPECT_EQ(texts(), (QStringList{version(), u"Installing — Pavonel will restart."_s}));
    EXPECT_EQ(buttons(), QStringList());
}

TEST_F(UpdateCard, writes_at_once_whether_to_check_automatically) {
    enter(Updater::Idle{});
    auto *automatic = open.widget<Switch>(QAccessible::CheckBox, u"Check automatically"_s);
    ASSERT_NE(automatic, nullptr);
    EXPECT_TRUE(automatic->isChecked());
    EXPECT_EQ(open.platform.fakeDefaults.value(Updater::automaticKey), std::nullopt);
    automatic->click();
    EXPECT_EQ(open.platform.fakeDefaults.value(Updater::automaticKey), StoredValue(false));
    EXPECT_FALSE(updater.automatic());
    automatic->click();
    EXPECT_TRUE(updater.automatic());
}

TEST_F(UpdateCard, shows_what_a_feed_says_of_any_kind_as_plain_text) {
    const QString markup = u"<h1>New</h1><img src='http://x'> & more\nsecond line 🎉"_s;
    enter(Updater::Available{u"1.3"_s, markup});
    EXPECT_EQ(texts().last(), markup);
    const QString book = u"words and more words "_s.repeated(100000);
    enter(Updater::Available{u"1.3"_s, book});
    EXPECT_LT(texts().last().size(), 5000) << "nobody reads on";
    EXPECT_TRUE(book.startsWith(texts().last().chopped(1)));
    EXPECT_FALSE(open.window()->grab().isNull());
    enter(Updater::Available{u"1.3"_s.repeated(100000), u"Calmer fades."_s});
    EXPECT_LT(texts().at(1).size(), 5000);
    EXPECT_FALSE(open.window()->grab().isNull());
    enter(Updater::Available{QString(), QString()});
    EXPECT_FALSE(open.window()->grab().isNull());
}

} // namespace pavonel::test
