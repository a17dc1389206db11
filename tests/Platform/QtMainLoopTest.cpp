#include "Platform/Qt/QtMainLoop.h"

#include "Platform/Qt/SharedTimer.h"
#include "support/InChild.h"
#include "support/holdsSoon.h"
#include "support/waitUntil.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

/// So that waiting for something that must not happen ends.
void let(MainLoop &loop, Seconds pass) {
    bool passed = false;
    const auto timer = loop.after(pass, [&] { passed = true; });
    EXPECT_TRUE(waitUntil([&] { return passed; }));
}

class TimeZoneVariable {
public:
    ~TimeZoneVariable() { set(before_); }
    void set(const QByteArray &zone) const {
        if (zone.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", zone);
    }

private:
    QByteArray before_ = qgetenv("TZ");
};

int offset(const QtMainLoop &loop, qint64 secondsSinceEpoch) {
    return loop.zone().offsetFromUtc(QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC));
}

constexpr qint64 winter = 1768478400; // 15 January 2026
constexpr qint64 summer = 1784116800; // 15 July 2026

} // namespace

TEST(QtMainLoop, a_one_shot_fires_once_and_never_early) {
    QtMainLoop loop;
    QElapsedTimer clock;
    clock.start();
    int fired = 0;
    const auto timer = loop.after(0.05, [&] { ++fired; });
    ASSERT_TRUE(waitUntil([&] { return fired > 0; }));
    EXPECT_GE(clock.elapsed(), 49);
    let(loop, 0.2);
    EXPECT_EQ(fired, 1);
}

TEST(QtMainLoop, a_repeating_timer_fires_until_its_handle_goes) {
    QtMainLoop loop;
    int fired = 0;
    auto timer = loop.every(0.01, [&] { ++fired; });
    ASSERT_TRUE(waitUntil([&] { return fired >= 5; }));
    timer.reset();
    const int before = fired;
    let(loop, 0.1);
    EXPECT_EQ(fired, before);
}

TEST(QtMainLoop, a_timer_whose_handle_goes_first_never_fires) {
    QtMainLoop loop;
    bool fired = false;
    loop.after(0.01, [&] { fired = true; }).reset();
    loop.every(0.01, [&] { fired = true; }).reset();
    let(loop, 0.1);
    EXPECT_FALSE(fired);
}

TEST(QtMainLoop, a_timer_may_end_itself_within_its_action) {
    QtMainLoop loop;
    int fired = 0;
    TimerHandle once;
    TimerHandle repeating;
    once = loop.after(0.01, [&, kept = QByteArray(100, 'x')] {
        once.reset();
        fired += kept.size() == 100;
    });
    repeating = loop.every(0.01, [&, kept = QByteArray(100, 'x')] {
        repeating.reset();
        fired += kept.size() == 100;
    });
    ASSERT_TRUE(waitUntil([&] { return fired == 2; }));
    let(loop, 0.1);
    EXPECT_EQ(fired, 2);
}

TEST(QtMainLoop, a_timer_may_end_all_others_of_its_interval) {
    QtMainLoop loop;
    int fired = 0;
    std::vector<TimerHandle> timers;
    for (int i = 0; i < 3; ++i) {
        timers.push_back(loop.every(0.01, [&] {
            ++fired;
            timers.clear();
        }));
    }
    let(loop, 0.1);
    EXPECT_EQ(fired, 1);
}

TEST(QtMainLoop, a_timer_does_not_beat_within_its_own_beat) {
    QtMainLoop loop;
    int beats = 0;
    int othersBeats = 0;
    std::optional<int> beatsAfterTheLoop;
    const auto other = loop.every(0.02, [&] { ++othersBeats; });
    const auto timer = loop.every(0.01, [&] {
        ++beats;
        if (beatsAfterTheLoop)
            return;
        EXPECT_TRUE(waitUntil([&, before = othersBeats] { return othersBeats >= before + 3; }));
        beatsAfterTheLoop = beats;
    });
    ASSERT_TRUE(waitUntil([&] { return beats > 1; }));
    EXPECT_EQ(beatsAfterTheLoop, 1);
}

TEST(QtMainLoop, a_timer_may_replace_itself_within_its_action) {
    QtMainLoop loop;
    int fired = 0;
    TimerHandle timer;
    std::function<void()> again = [&] {
        if (++fired < 3)
            timer = loop.after(0.01, again);
    };
    timer = loop.after(0.01, again);
    EXPECT_TRUE(waitUntil([&] { return fired == 3; }));
}

TEST(QtMainLoop, timers_of_the_same_interval_fire_in_one_wake_up) {
    QtMainLoop loop;
    std::vector<char> firings;
    const auto first = loop.every(0.2, [&] { firings.push_back('a'); });
    let(loop, 0.1);
    const auto second = loop.every(0.2, [&] { firings.push_back('b'); });
    firings.clear();
    ASSERT_TRUE(waitUntil([&] { return !firings.empty(); }));
    EXPECT_EQ(firings, (std::vector<char>{'a', 'b'}));
}

namespace {

constexpr Seconds shortBeat = 0.05;

/// A deferrable timer in a loop in which nothing else happens, until it has beaten for some times; what it
/// did, in order.
class DeferredBeats {
public:
    QtMainLoop loop;
    std::vector<QByteArray> log;
    int mostWaited = 0;
    MainLoop::Deferrable deferrable{.action =
                                        [this] {
                                            log.push_back("beat");
                                            if (++beats_ == enough_)
                                                loop_.quit();
                                            return MainLoop::unlimited;
                                        },
                                    .catchUp =
                                        [this](int beats) {
                                            EXPECT_GT(beats, 0);
                                            EXPECT_LE(beats, SharedTimer::mostWaiting);
                                            log.push_back("caught up");
                                            mostWaited = std::max(mostWaited, beats);
                                        }};

    void beat(int times) {
        enough_ = times;
        const auto timer = loop.everyDeferrable(shortBeat, deferrable);
        loop_.exec();
    }
    bool hasDone(const char *what) const { return std::find(log.begin(), log.end(), what) != log.end(); }

private:
    QEventLoop loop_;
    int beats_ = 0;
    int enough_ = 0;
};

} // namespace

/// On a busy machine some beats are late, and those do not wait.
TEST(QtMainLoop, beats_that_can_wait_are_made_up_for_before_the_next_one) {
    DeferredBeats deferred;
    deferred.beat(20);
    ASSERT_TRUE(deferred.hasDone("caught up"));
    for (std::size_t i = 0; i + 1 < deferred.log.size(); ++i)
        EXPECT_FALSE(deferred.log[i] == "caught up" && deferred.log[i + 1] != "beat") << i;
    EXPECT_EQ(deferred.log.front(), "beat");
    EXPECT_EQ(deferred.log.back(), "beat");
}

TEST(QtMainLoop, what_waits_is_made_up_for_before_anything_else_happens) {
    DeferredBeats deferred;
    deferred.deferrable.isUrgent = [&] {
        deferred.loop.post([&] { deferred.log.push_back("other"); });
        return false;
    };
    deferred.beat(20);
    ASSERT_TRUE(deferred.hasDone("caught up"));
    for (std::size_t i = 0; i < deferred.log.size(); ++i) {
        if (deferred.log[i] == "caught up") {
            ASSERT_LT(i + 1, deferred.log.size());
            EXPECT_EQ(deferred.log[i + 1], "other");
        }
    }
}

TEST(QtMainLoop, an_urgent_beat_does_not_wait) {
    DeferredBeats deferred;
    deferred.deferrable.isUrgent = [] { return true; };
    deferred.beat(10);
    EXPECT_FALSE(deferred.hasDone("caught up"));
}

/// As it is when the clock was set, or the machine slept.
TEST(QtMainLoop, a_beat_does_not_wait_when_the_clock_has_moved_by_more_than_one) {
    DeferredBeats deferred;
    deferred.deferrable.isUrgent = [] {
        std::this_thread::sleep_for(std::chrono::duration<Seconds>(2 * shortBeat));
        return false;
    };
    deferred.beat(10);
    EXPECT_EQ(deferred.mostWaited, 1);
}

TEST(QtMainLoop, no_beat_waits_beside_a_timer_that_cannot) {
    DeferredBeats deferred;
    int plainBeats = 0;
    const auto plain = deferred.loop.every(shortBeat, [&] { ++plainBeats; });
    deferred.beat(10);
    EXPECT_FALSE(deferred.hasDone("caught up"));
    EXPECT_GE(plainBeats, 9);
}

TEST(QtMainLoop, whom_catching_up_destroys_gets_no_event) {
    DeferredBeats deferred;
    auto receiver = std::make_unique<QObject>();
    deferred.deferrable.isUrgent = [&] {
        if (receiver)
            QCoreApplication::postEvent(receiver.get(), new QEvent(QEvent::User));
        return false;
    };
    const auto catchUp = deferred.deferrable.catchUp;
    deferred.deferrable.catchUp = [&](int beats) {
        catchUp(beats);
        receiver.reset();
    };
    deferred.beat(20);
    EXPECT_FALSE(receiver);
}

TEST(QtMainLoop, nonsense_for_a_time_does_no_harm) {
    QtMainLoop loop;
    int fired = 0;
    bool firedFarOff = false;
    const auto notANumber = loop.after(std::numeric_limits<double>::quiet_NaN(), [&] { ++fired; });
    const auto past = loop.after(-1, [&] { ++fired; });
    const auto never = loop.after(std::numeric_limits<double>::infinity(), [&] { firedFarOff = true; });
    const auto years = loop.after(1e9, [&] { firedFarOff = true; });
    const auto eon = loop.every(1e300, [&] { firedFarOff = true; });
    int beats = 0;
    auto noInterval = loop.every(0, [&] { ++beats; });
    EXPECT_TRUE(waitUntil([&] { return fired == 2 && beats >= 2; }));
    EXPECT_FALSE(firedFarOff);
}

TEST(QtMainLoop, what_another_thread_posts_runs_on_the_main_thread) {
    QtMainLoop loop;
    std::thread::id ranOn;
    std::thread([&] { loop.post([&] { ranOn = std::this_thread::get_id(); }); }).join();
    EXPECT_EQ(ranOn, std::thread::id());
    EXPECT_TRUE(waitUntil([&] { return ranOn == std::this_thread::get_id(); }));
}

TEST(QtMainLoop, posted_actions_keep_their_order) {
    QtMainLoop loop;
    std::vector<int> order;
    for (int i = 0; i < 3; ++i)
        loop.post([&, i] { order.push_back(i); });
    ASSERT_TRUE(waitUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(QtMainLoop, the_zone_follows_the_environment) {
    const TimeZoneVariable variable;
    const QtMainLoop loop;
    variable.set("Europe/Berlin");
    EXPECT_EQ(loop.zone().id(), "Europe/Berlin");
    variable.set("Australia/Lord_Howe");
    EXPECT_TRUE(waitUntil([&] { return loop.zone().id() == "Australia/Lord_Howe"; }));
}

TEST(QtMainLoop, actions_due_together_see_one_zone_and_a_loop_within_them_the_new_one) {
    const TimeZoneVariable variable;
    QtMainLoop loop;
    QByteArrayList zones;
    bool done = false;
    const auto note = [&] { zones.append(loop.zone().id()); };
    variable.set("Europe/Berlin");
    TimerHandle timer = loop.every(0.01, [&] {
        timer.reset();
        note();
        variable.set("Asia/Tokyo");
        note();
        QEventLoop inner;
        QTimer::singleShot(0, [&] {
            waitUntil([&] { return loop.zone().id() == "Asia/Tokyo"; });
            note();
            inner.quit();
        });
        inner.exec();
        done = true;
    });
    ASSERT_TRUE(waitUntil([&] { return done; }));
    EXPECT_EQ(zones, (QByteArrayList{"Europe/Berlin", "Europe/Berlin", "Asia/Tokyo"}));
    EXPECT_EQ(loop.zone().id(), "Asia/Tokyo");
}

TEST(QtMainLoop, the_zone_knows_summer_and_winter) {
    const TimeZoneVariable variable;
    const QtMainLoop loop;
    variable.set("Europe/Berlin");
    EXPECT_EQ(offset(loop, winter), 3600);
    EXPECT_EQ(offset(loop, summer), 7200);
}

TEST(QtMainLoop, a_zone_without_a_name_has_the_c_librarys_offset) {
    const TimeZoneVariable variable;
    for (const char *zone :
         {"IST-5:30", "/usr/share/zoneinfo/Asia/Kolkata", ":Asia/Kolkata", "<+0530>-5:30"}) {
        variable.set(zone);
        const QtMainLoop loop;
        EXPECT_EQ(offset(loop, winter), 19800) << zone;
    }
}

TEST(QtMainLoop, a_zone_without_a_name_gives_way_to_another) {
    const TimeZoneVariable variable;
    variable.set("IST-5:30");
    const QtMainLoop loop;
    EXPECT_EQ(offset(loop, winter), 19800);
    variable.set("Asia/Tokyo");
    EXPECT_TRUE(waitUntil([&] { return loop.zone().id() == "Asia/Tokyo"; }));
}

TEST(QtMainLoop, an_unknown_zone_is_utc) {
    const TimeZoneVariable variable;
    variable.set("Nowhere/Nothing");
    const QtMainLoop loop;
    EXPECT_TRUE(loop.zone().isValid());
    EXPECT_EQ(offset(loop, winter), 0);
}

TEST(QtMainLoop, a_new_system_zone_is_seen_while_running) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test put a folder of its own in the place of /etc.";
    inChild([] {
        mountEmpty("/etc", 64);
        qunsetenv("TZ");
        const QtMainLoop loop;
        const auto choose = [](const char *zone) {
            EXPECT_EQ(::symlink(zone, "/etc/new"), 0);
            EXPECT_EQ(::rename("/etc/new", "/etc/localtime"), 0);
        };
        choose("/usr/share/zoneinfo/Europe/Berlin");
        EXPECT_EQ(loop.zone().id(), "Europe/Berlin");
        choose("../usr/share/zoneinfo/Asia/Kolkata");
        EXPECT_TRUE(holdsSoon([&] { return loop.zone().id() == "Asia/Kolkata"; }));
    });
}

TEST(QtMainLoop, asking_for_the_zone_is_cheap) {
    const QtMainLoop loop;
    EXPECT_TRUE(loop.zone().isValid());
    constexpr int questions = 10'000;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < questions; ++i)
        loop.zone();
    EXPECT_LT(clock.elapsed(), questions) << "a millisecond each"; // a thousandth of that on a quiet machine
    RecordProperty("nanoseconds", static_cast<int>(clock.nsecsElapsed() / questions));
}

} // namespace pavonel::test
