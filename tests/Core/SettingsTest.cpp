#include "Core/Settings.h"

#include "support/FakePlatform.h"

#include <iterator>
#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Key = std::pair<QString, StoredValue>;

/// What a fresh store yields and what the first save writes, in this order.
const std::vector<Key> &table() {
    static const auto text = [](const char *latin1) { return QString::fromLatin1(latin1); };
    static const std::vector<Key> defaults{
        {text("microEnabled"), true},
        {text("microInterval"), 1200.0},
        {text("microDuration"), 20.0},
        {text("plannedBreaks"), QByteArray("[]")},
        {text("longEnabled"), true},
        {text("longInterval"), 3600.0},
        {text("longDuration"), 300.0},
        {text("preNotifySeconds"), 30.0},
        {text("showFloatingCountdown"), true},
        {text("countdownBeforeStart"), qint64{3}},
        {text("allowSkip"), true},
        {text("allowPostpone"), true},
        {text("strictMode"), false},
        {text("naturalBreakEnabled"), true},
        {text("idleResetSeconds"), 60.0},
        {text("pauseOnFullscreen"), true},
        {text("pauseOnAudio"), false},
        {text("pauseOnMicrophone"), true},
        {text("pauseOnScreenSharing"), true},
        {text("deepFocusApps"), QStringList()},
        {text("soundEnabled"), true},
        {text("startSound"), text("Submarine")},
        {text("endSound"), text("Glass")},
        {text("backgroundStyle"), qint64{0}},
        {text("customBackgroundPath"), text("")},
        {text("messages"),
         QStringList{text("Look 20 feet away for 20 seconds. Your eyes will thank you."),
                     text("Drop your shoulders, tuck your chin back."),
                     text("Take a deep breath and let it go."),
                     QStringLiteral("Look out the window \u2014 find the farthest thing you can see."),
                     text("Stand up and stretch a little.")}},
        {text("showSkipCountdownRing"), true},
        {text("postureEnabled"), true},
        {text("postureInterval"), 1800.0},
        {text("blinkEnabled"), false},
        {text("blinkInterval"), 600.0},
        {text("onBreakStartScript"), text("")},
        {text("onBreakEndScript"), text("")},
        {text("launchAtLogin"), true},
        {text("hotKeysEnabled"), true},
    };
    return defaults;
}

QStringList keysOfTable() {
    QStringList keys;
    for (const auto &[key, value] : table())
        keys.append(key);
    return keys;
}

struct SettingsFixture {
    FakePlatform platform;
    FakeDefaults &store = platform.fakeDefaults;

    Settings loaded() { return Settings(store, platform.loop); }

    /// What the store holds under `key` after these settings saved everything.
    std::map<QString, StoredValue> saved(Settings &settings) {
        settings.strictMode = settings.strictMode.get();
        platform.loop.advance(1);
        std::map<QString, StoredValue> values;
        for (const StoredSetting *setting : settings.all())
            values.emplace(setting->key(), store.values.value(setting->key()));
        return values;
    }

    double microInterval(StoredValue stored) {
        store.values[QStringLiteral("microInterval")] = std::move(stored);
        return loaded().microInterval;
    }
    int countdown(StoredValue stored) {
        store.values[QStringLiteral("countdownBeforeStart")] = std::move(stored);
        return loaded().countdownBeforeStart;
    }
    bool strict(StoredValue stored) {
        store.values[QStringLiteral("strictMode")] = std::move(stored);
        return loaded().strictMode;
    }
};

} // namespace

TEST(Settings, a_fresh_store_yields_exactly_the_defaults) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    const auto saved = fixture.saved(settings);
    ASSERT_EQ(settings.all().size(), table().size());
    for (const auto &[key, value] : table())
        EXPECT_EQ(saved.at(key), value) << key.toStdString();
}

TEST(Settings, the_properties_are_declared_in_order_under_their_names) {
    SettingsFixture fixture;
    const Settings settings(fixture.store, fixture.platform.loop);
    QStringList keys;
    for (const StoredSetting *setting : settings.all())
        keys.append(setting->key());
    EXPECT_EQ(keys, keysOfTable());
}

TEST(Settings, loading_writes_nothing) {
    SettingsFixture fixture;
    const Settings settings(fixture.store, fixture.platform.loop);
    fixture.platform.loop.advance(10);
    EXPECT_EQ(fixture.store.written, QStringList());
}

TEST(Settings, a_save_writes_every_property_in_order_and_nothing_else) {
    SettingsFixture fixture;
    fixture.store.values[QStringLiteral("didOnboard")] = true;
    fixture.store.values[QStringLiteral("stats.days")] = QByteArray("{}");
    fixture.store.values[QStringLiteral("somebodyElses")] = QStringLiteral("kept");
    Settings settings(fixture.store, fixture.platform.loop);
    settings.strictMode = true;
    fixture.platform.loop.advance(1);
    EXPECT_EQ(fixture.store.written, keysOfTable());
    EXPECT_EQ(fixture.store.values.size(), std::ssize(table()) + 3);
    EXPECT_EQ(fixture.store.values[QStringLiteral("somebodyElses")], StoredValue(QStringLiteral("kept")));
}

TEST(Settings, what_was_saved_is_loaded_again) {
    SettingsFixture fixture;
    PlannedBreak record;
    record.label = QStringLiteral("Kaffee ☕");
    {
        Settings settings(fixture.store, fixture.platform.loop);
        settings.microEnabled = false;
        settings.microInterval = 0.1;
        settings.countdownBeforeStart = -7;
        settings.startSound = QStringLiteral("None");
        settings.deepFocusApps = QStringList{QStringLiteral("a"), QStringLiteral("b")};
        settings.plannedBreaks = PlannedBreaks{record, PlannedBreak{}};
        fixture.platform.loop.advance(1);
    }
    const Settings settings(fixture.store, fixture.platform.loop);
    EXPECT_FALSE(settings.microEnabled);
    EXPECT_EQ(settings.microInterval, 0.1);
    EXPECT_EQ(settings.countdownBeforeStart, -7);
    EXPECT_EQ(settings.startSound, QStringLiteral("None"));
    EXPECT_EQ(settings.deepFocusApps.get(), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    ASSERT_EQ(settings.plannedBreaks->size(), 2U);
    EXPECT_EQ(settings.plannedBreaks->front(), record);
}

// Loading

TEST(Settings, a_number_that_holds_a_text_yields_the_default_for_that_key_alone) {
    SettingsFixture fixture;
    fixture.store.values[QStringLiteral("microInterval")] = QStringLiteral("900");
    fixture.store.values[QStringLiteral("longInterval")] = 1800.0;
    const Settings settings = fixture.loaded();
    EXPECT_EQ(settings.microInterval, 1200);
    EXPECT_EQ(settings.longInterval, 1800);
}

TEST(Settings, any_key_with_a_value_of_a_wrong_type_yields_its_default) {
    const std::vector<StoredValue> values{true,
                                          qint64{2},
                                          0.5,
                                          QStringLiteral("text"),
                                          QStringList{QStringLiteral("a")},
                                          QByteArray("bytes"),
                                          Instant{}};
    for (const auto &[key, defaultValue] : table()) {
        for (const StoredValue &value : values) {
            const bool isExactNumber =
                std::holds_alternative<double>(defaultValue) && std::holds_alternative<qint64>(value);
            if (value.index() == defaultValue.index() || isExactNumber)
                continue;
            SettingsFixture fixture;
            fixture.store.values[key] = value;
            Settings settings(fixture.store, fixture.platform.loop);
            const auto saved = fixture.saved(settings);
            for (const auto &[otherKey, otherDefault] : table())
                EXPECT_EQ(saved.at(otherKey), otherDefault)
                    << otherKey.toStdString() << " with " << key.toStdString() << " of type "
                    << value.index();
        }
    }
}

TEST(Settings, a_number_is_taken_wherever_it_converts_exactly) {
    SettingsFixture fixture;
    EXPECT_EQ(fixture.microInterval(900.5), 900.5);
    EXPECT_EQ(fixture.microInterval(qint64{900}), 900);
    EXPECT_EQ(fixture.microInterval(qint64{9007199254740992}), 9007199254740992.0);
    EXPECT_EQ(fixture.microInterval(qint64{9007199254740993}), 1200); // 2^53 + 1 has no double
    EXPECT_EQ(fixture.microInterval(qint64{9007199254740994}), 9007199254740994.0);
    EXPECT_EQ(fixture.microInterval(qint64{-9007199254740994}), -9007199254740994.0);
    EXPECT_EQ(fixture.microInterval(qint64{4611686018427387904}), 4611686018427387904.0); // 2^62
    EXPECT_EQ(fixture.microInterval(qint64{9223372036854774784}), 9223372036854774784.0);
    EXPECT_EQ(fixture.microInterval(std::numeric_limits<qint64>::min()), -9223372036854775808.0);
    EXPECT_EQ(fixture.microInterval(std::numeric_limits<qint64>::max()), 1200); // its nearest double is 2^63
    EXPECT_EQ(fixture.countdown(qint64{5}), 5);
    EXPECT_EQ(fixture.countdown(5.0), 5);
    EXPECT_EQ(fixture.countdown(5.5), 3);
    EXPECT_EQ(fixture.countdown(3e9), 3);
    EXPECT_EQ(fixture.countdown(-2147483648.0), std::numeric_limits<int>::min());
    EXPECT_EQ(fixture.strict(qint64{1}), true);
    EXPECT_EQ(fixture.strict(1.0), true);
    EXPECT_EQ(fixture.strict(qint64{0}), false);
    EXPECT_EQ(fixture.strict(qint64{2}), false); // no truth value, so the default
}

TEST(Settings, a_number_is_taken_as_it_is_without_a_check_of_its_range) {
    SettingsFixture fixture;
    EXPECT_EQ(fixture.microInterval(0.0), 0);
    EXPECT_EQ(fixture.microInterval(-300.0), -300);
    EXPECT_EQ(fixture.microInterval(1e300), 1e300);
    EXPECT_EQ(fixture.countdown(qint64{-100}), -100);
}

TEST(Settings, what_is_no_number_yields_the_default) {
    SettingsFixture fixture;
    EXPECT_EQ(fixture.microInterval(std::numeric_limits<double>::quiet_NaN()), 1200);
    EXPECT_EQ(fixture.microInterval(std::numeric_limits<double>::infinity()), 1200);
    EXPECT_EQ(fixture.microInterval(-std::numeric_limits<double>::infinity()), 1200);
    EXPECT_EQ(fixture.countdown(std::numeric_limits<double>::quiet_NaN()), 3);
    EXPECT_EQ(fixture.strict(std::numeric_limits<double>::quiet_NaN()), false);
}

TEST(Settings, an_empty_message_list_is_kept_as_empty) {
    SettingsFixture fixture;
    fixture.store.values[QStringLiteral("messages")] = QStringList();
    EXPECT_EQ(fixture.loaded().messages.get(), QStringList());
    fixture.store.values.remove(QStringLiteral("messages"));
    EXPECT_EQ(fixture.loaded().messages->size(), 5);
}

TEST(Settings, undecodable_planned_breaks_load_as_none_and_stay_until_the_next_save) {
    SettingsFixture fixture;
    const QString key = QStringLiteral("plannedBreaks");
    fixture.store.values[key] = QByteArray("[{\"id\": 3}]");
    Settings settings(fixture.store, fixture.platform.loop);
    EXPECT_TRUE(settings.plannedBreaks->empty());
    fixture.platform.loop.advance(10);
    EXPECT_EQ(fixture.store.values[key], StoredValue(QByteArray("[{\"id\": 3}]")));
    settings.strictMode = true;
    fixture.platform.loop.advance(1);
    EXPECT_EQ(fixture.store.values[key], StoredValue(QByteArray("[]")));
}

TEST(Settings, long_and_foreign_texts_come_back_to_the_letter) {
    SettingsFixture fixture;
    const QStringList messages{QString(10000, u'x'), QStringLiteral("خذ استراحة قصيرة"),
                               QStringLiteral("👩‍💻🧘🏽‍♀️ \u200Fעברית"), QString()};
    {
        Settings settings(fixture.store, fixture.platform.loop);
        settings.messages = messages;
        fixture.platform.loop.advance(1);
    }
    EXPECT_EQ(fixture.loaded().messages.get(), messages);
}

// Saving

TEST(Settings, ten_changes_cause_one_save_150_ms_after_the_last) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    for (int i = 0; i < 10; ++i) {
        settings.microInterval = 100 + i;
        fixture.platform.loop.advance(0.1);
    }
    EXPECT_EQ(fixture.store.written, QStringList());
    fixture.platform.loop.advance(0.049); // 149 ms after the last
    EXPECT_EQ(fixture.store.written, QStringList());
    fixture.platform.loop.advance(0.002);
    EXPECT_EQ(fixture.store.written.size(), std::ssize(table()));
    EXPECT_EQ(fixture.store.values[QStringLiteral("microInterval")], StoredValue(109.0));
    fixture.platform.loop.advance(60);
    EXPECT_EQ(fixture.store.written.size(), std::ssize(table()));
}

TEST(Settings, a_change_after_the_quiet_period_is_saved_again) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    settings.strictMode = true;
    fixture.platform.loop.advance(1);
    settings.strictMode = false;
    fixture.platform.loop.advance(1);
    EXPECT_EQ(fixture.store.written.size(), 70);
    EXPECT_EQ(fixture.store.values[QStringLiteral("strictMode")], StoredValue(false));
}

TEST(Settings, a_change_of_any_property_causes_a_save) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    int saves = 0;
    const auto expectSave = [&] {
        fixture.platform.loop.advance(0.2);
        EXPECT_EQ(fixture.store.written.size(), std::ssize(table()) * ++saves);
    };
    settings.allowSkip = false;
    expectSave();
    settings.longDuration = 5;
    expectSave();
    settings.backgroundStyle = 2;
    expectSave();
    settings.endSound = QStringLiteral("Ping");
    expectSave();
    settings.messages = QStringList();
    expectSave();
    settings.plannedBreaks = PlannedBreaks{PlannedBreak{}};
    expectSave();
}

TEST(Settings, what_cannot_be_encoded_is_left_as_it_was_and_the_rest_is_saved) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    PlannedBreak record;
    settings.plannedBreaks = PlannedBreaks{record};
    fixture.platform.loop.advance(1);
    const StoredValue before = fixture.store.values[QStringLiteral("plannedBreaks")];
    fixture.store.written.clear();
    record.duration = std::numeric_limits<double>::infinity();
    settings.plannedBreaks = PlannedBreaks{record};
    settings.strictMode = true;
    fixture.platform.loop.advance(1);
    EXPECT_EQ(fixture.store.values[QStringLiteral("plannedBreaks")], before);
    EXPECT_EQ(fixture.store.written.size(), std::ssize(table()) - 1);
    EXPECT_EQ(fixture.store.values[QStringLiteral("strictMode")], StoredValue(true));
}

TEST(Settings, settings_that_are_gone_save_nothing) {
    SettingsFixture fixture;
    {
        Settings settings(fixture.store, fixture.platform.loop);
        settings.strictMode = true;
    }
    fixture.platform.loop.advance(1);
    EXPECT_EQ(fixture.store.written, QStringList());
}

TEST(Settings, at_the_end_of_the_program_a_waiting_change_is_saved_at_once) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    settings.saveNow();
    EXPECT_EQ(fixture.store.written, QStringList());
    settings.strictMode = true;
    settings.saveNow();
    EXPECT_EQ(fixture.store.written.size(), std::ssize(table()));
    fixture.platform.loop.advance(1);
    EXPECT_EQ(fixture.store.written.size(), std::ssize(table()));
}

TEST(Settings, observers_hear_of_each_change_before_it_is_made) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    std::vector<double> seen;
    auto observation = settings.observe([&] { seen.push_back(settings.microInterval); });
    settings.microInterval = 5;
    settings.microInterval = 6;
    observation.reset();
    settings.microInterval = 7;
    EXPECT_EQ(seen, (std::vector<double>{1200, 5}));
}

TEST(Settings, skip_and_postpone_are_permitted_unless_switched_off_or_strict) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    EXPECT_TRUE(settings.isSkipPermitted());
    EXPECT_TRUE(settings.isPostponePermitted());
    settings.allowSkip = false;
    EXPECT_FALSE(settings.isSkipPermitted());
    EXPECT_TRUE(settings.isPostponePermitted());
    settings.allowSkip = true;
    settings.strictMode = true;
    EXPECT_FALSE(settings.isSkipPermitted());
    EXPECT_FALSE(settings.isPostponePermitted());
    settings.strictMode = false;
    settings.allowPostpone = false;
    EXPECT_FALSE(settings.isPostponePermitted());
}

// What observing is

TEST(Observable, an_observer_may_change_another_field_while_it_is_told) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    int heard = 0;
    auto gone = settings.observe([] {});
    bool isFirst = true;
    const auto changing = settings.observe([&] {
        if (!std::exchange(isFirst, false))
            return;
        gone.reset(); // its place in the list must not move the others while they are told
        settings.microInterval = 5;
    });
    const auto last = settings.observe([&] { ++heard; });
    settings.strictMode = true;
    EXPECT_EQ(heard, 2); // once for each of the two changes
    EXPECT_TRUE(settings.strictMode);
    EXPECT_EQ(settings.microInterval, 5);
}

TEST(Observable, an_observer_may_stop_observing_while_it_is_told) {
    SettingsFixture fixture;
    Settings settings(fixture.store, fixture.platform.loop);
    int heard = 0;
    Observable::Observation observation;
    observation = settings.observe([&] {
        ++heard;
        observation.reset();
    });
    settings.strictMode = true;
    settings.strictMode = false;
    EXPECT_EQ(heard, 1);
}

} // namespace pavonel::test
