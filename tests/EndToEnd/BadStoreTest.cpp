#include "EndToEnd/Desktop.h"

#include <QJsonArray>

#include <csignal>
#include <ostream>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const char *const numbers[] = {"microInterval",        "microDuration",    "longInterval",    "longDuration",
                               "preNotifySeconds",     "idleResetSeconds", "postureInterval", "blinkInterval",
                               "countdownBeforeStart", "backgroundStyle"};
const char *const switches[] = {
    "microEnabled",          "longEnabled",       "showFloatingCountdown", "allowSkip",
    "allowPostpone",         "strictMode",        "naturalBreakEnabled",   "pauseOnFullscreen",
    "pauseOnAudio",          "pauseOnMicrophone", "pauseOnScreenSharing",  "soundEnabled",
    "showSkipCountdownRing", "postureEnabled",    "blinkEnabled",          "launchAtLogin",
    "hotKeysEnabled",        "didOnboard"};
const char *const texts[] = {"startSound", "endSound", "customBackgroundPath", "onBreakStartScript",
                             "onBreakEndScript"};
const char *const others[] = {"deepFocusApps", "messages", "plannedBreaks", "stats.days"};

template <class Keys> void setAll(QJsonObject &members, const Keys &keys, const QJsonValue &value) {
    for (const char *key : keys)
        members[QLatin1StringView(key)] = value;
}

QJsonObject everythingOfAnotherType() {
    QJsonObject members;
    setAll(members, numbers, QStringLiteral("NaN"));
    setAll(members, switches, QStringLiteral("true"));
    setAll(members, texts, 7.5);
    setAll(members, others, QJsonObject{{QStringLiteral("data"), 3}});
    return members;
}

QJsonObject everythingNull() {
    QJsonObject members;
    setAll(members, numbers, QJsonValue::Null);
    setAll(members, switches, QJsonValue::Null);
    setAll(members, texts, QJsonArray{QJsonValue::Null});
    setAll(members, others, QJsonArray{1, true, QJsonValue::Null});
    return members;
}

QJsonObject allNumbers(const QJsonValue &value) {
    QJsonObject members{{QStringLiteral("naturalBreakEnabled"), false}, // or nobody would ever be at work
                        {QStringLiteral("longEnabled"), true},
                        {QStringLiteral("postureEnabled"), true},
                        {QStringLiteral("blinkEnabled"), true}};
    setAll(members, numbers, value);
    return members;
}

QJsonObject withoutEnd(double duration) {
    return {{QStringLiteral("microInterval"), 1}, {QStringLiteral("microDuration"), duration}};
}

struct Case {
    const char *name;
    QJsonObject members;
};

void PrintTo(const Case &stored, std::ostream *out) {
    *out << stored.name;
}

std::string nameOf(const testing::TestParamInfo<Case> &info) {
    return info.param.name;
}

} // namespace

class BadStore : public testing::TestWithParam<Case> {};

INSTANTIATE_TEST_SUITE_P(Values, BadStore,
                         testing::Values(Case{"every_value_of_another_type", everythingOfAnotherType()},
                                         Case{"every_value_null", everythingNull()},
                                         Case{"zero_intervals_and_durations", allNumbers(0)},
                                         Case{"negative_intervals_and_durations", allNumbers(-1e9)},
                                         Case{"huge_numbers", allNumbers(1e308)},
                                         Case{"hugely_negative_numbers", allNumbers(-1e308)},
                                         Case{"a_break_longer_than_any_clock", withoutEnd(1e300)}),
                         nameOf);

TEST_P(BadStore, is_survived) {
    Desktop desktop;
    for (int milliseconds = 4000; milliseconds < generousTimeout && desktop.statistics().isEmpty();
         milliseconds *= 2) {
        desktop.store(GetParam().members);
        desktop.startProgram();
        EXPECT_FALSE(waitUntil([&] { return !desktop.isRunning(); }, milliseconds))
            << "the program ended by itself";
        EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    }
    EXPECT_FALSE(desktop.statistics().isEmpty()) << "nothing was counted";
}

} // namespace pavonel::test
