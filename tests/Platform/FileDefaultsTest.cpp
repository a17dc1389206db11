#include "Platform/DefaultsFolder.h"

#include <limits>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace pavonel::test {

namespace {

using FileDefaultsTest = DefaultsFolder;

int modeOf(const QString &path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path).data(), &status) == 0 ? static_cast<int>(status.st_mode & 07777)
                                                                : -1;
}

} // namespace

TEST_F(FileDefaultsTest, a_fresh_store_is_empty_and_writes_nothing) {
    open();
    EXPECT_EQ(store->value(QStringLiteral("microInterval")), std::nullopt);
    loop.advance(3600);
    store->flush();
    EXPECT_EQ(files(), QStringList());
}

TEST_F(FileDefaultsTest, the_file_is_for_the_users_eyes_only) {
    open().set(QStringLiteral("phonePairToken"), QStringLiteral("secret"));
    loop.advance(1);
    EXPECT_EQ(modeOf(path), 0600);
    EXPECT_EQ(modeOf(folder), 0700);
}

TEST_F(FileDefaultsTest, a_folder_that_others_may_enter_is_closed_to_them) {
    QDir().mkpath(folder);
    QFile(folder).setPermissions(QFile::Permissions(0x7755));
    open();
    EXPECT_EQ(modeOf(folder), 0700);
}

TEST_F(FileDefaultsTest, every_type_comes_back_as_it_was_stored) {
    open();
    const Instant moment{std::chrono::milliseconds(1772442000123)};
    store->set(QStringLiteral("truth"), true);
    store->set(QStringLiteral("whole"), qint64{9007199254740993});
    store->set(QStringLiteral("fraction"), 0.1);
    store->set(QStringLiteral("text"), QStringLiteral("ü “quoted” \\ \n 👀"));
    store->set(QStringLiteral("texts"), QStringList{QStringLiteral("a"), QString()});
    store->set(QStringLiteral("data"), QByteArray("\0\xff{}", 4));
    store->set(QStringLiteral("moment"), moment);
    store->flush();
    reopen();
    EXPECT_EQ(store->value(QStringLiteral("truth")), StoredValue(true));
    EXPECT_EQ(store->value(QStringLiteral("whole")), StoredValue(qint64{9007199254740993}));
    EXPECT_EQ(store->value(QStringLiteral("fraction")), StoredValue(0.1));
    EXPECT_EQ(store->value(QStringLiteral("text")), StoredValue(QStringLiteral("ü “quoted” \\ \n 👀")));
    EXPECT_EQ(store->value(QStringLiteral("texts")),
              StoredValue(QStringList{QStringLiteral("a"), QString()}));
    EXPECT_EQ(store->value(QStringLiteral("data")), StoredValue(QByteArray("\0\xff{}", 4)));
    EXPECT_EQ(store->value(QStringLiteral("moment")), StoredValue(moment));
}

TEST_F(FileDefaultsTest, data_and_dates_have_their_forms_in_the_file) {
    open();
    store->set(QStringLiteral("stats.days"), QByteArray("{}"));
    store->set(QStringLiteral("lastUpdateCheck"), Instant{std::chrono::milliseconds(1772442000123)});
    store->flush();
    EXPECT_EQ(
        object(),
        QJsonObject(
            {{QStringLiteral("stats.days"), QJsonObject{{QStringLiteral("data"), QStringLiteral("e30=")}}},
             {QStringLiteral("lastUpdateCheck"),
              QJsonObject{{QStringLiteral("date"), QStringLiteral("2026-03-02T09:00:00.123Z")}}}}));
}

TEST_F(FileDefaultsTest, a_whole_number_is_told_from_a_fraction_by_its_value_alone) {
    put(R"({"a": 1200.0, "b": 12e2, "c": 1200.5, "d": 1e300})");
    open();
    EXPECT_EQ(store->value(QStringLiteral("a")), StoredValue(qint64{1200}));
    EXPECT_EQ(store->value(QStringLiteral("b")), StoredValue(qint64{1200}));
    EXPECT_EQ(store->value(QStringLiteral("c")), StoredValue(1200.5));
    EXPECT_EQ(store->value(QStringLiteral("d")), StoredValue(1e300));
}

TEST_F(FileDefaultsTest, a_value_that_json_cannot_hold_leaves_what_is_stored) {
    put(R"({"interval": 5})");
    open();
    store->set(QStringLiteral("interval"), std::numeric_limits<double>::quiet_NaN());
    store->set(QStringLiteral("interval"), std::numeric_limits<double>::infinity());
    store->set(QStringLiteral("interval"), Instant(std::chrono::duration<double>(1e300)));
    store->flush();
    EXPECT_EQ(content(), R"({"interval": 5})");
}

TEST_F(FileDefaultsTest, a_value_of_unknown_shape_reads_as_absent) {
    put(R"({"null": null, "mixed": ["a", 1], "object": {"x": 1}, "both": {"data": "", "date": ""},
            "date": {"date": "yesterday"}, "local": {"date": "2026-03-02T09:00:00.000"}, "data": {"data": "%%%"}})");
    open();
    for (const char *key : {"null", "mixed", "object", "both", "date", "local", "data"})
        EXPECT_EQ(store->value(QString::fromUtf8(key)), std::nullopt) << key;
}

TEST_F(FileDefaultsTest, what_this_version_does_not_know_is_kept_to_the_letter) {
    const QByteArray strange = R"({"z": [1.10,  {"]}\"": null}], "exact": 123456789012345678901234567890})";
    put("{\"later\": " + strange + ", \"esc\\u0061ped\":\"\\ud83d\\ude00\", \"n\":-0.0e+0 , \"known\":1}");
    open().set(QStringLiteral("known"), qint64{2});
    store->flush();
    EXPECT_TRUE(content().contains("\"later\": " + strange)) << content().data();
    EXPECT_TRUE(content().contains(R"("escaped": "\ud83d\ude00")")) << content().data();
    EXPECT_TRUE(content().contains(R"("n": -0.0e+0)")) << content().data();
    EXPECT_EQ(get<qint64>(reopen(), "known"), 2);
}

TEST_F(FileDefaultsTest, a_byte_order_mark_does_no_harm) {
    put("\xEF\xBB\xBF{\"known\": 1}");
    EXPECT_EQ(get<qint64>(open(), "known"), 1);
}

TEST_F(FileDefaultsTest, a_change_is_on_disk_within_a_second) {
    open().set(QStringLiteral("strictMode"), true);
    EXPECT_EQ(files(), QStringList());
    loop.advance(1);
    EXPECT_EQ(object(), QJsonObject({{QStringLiteral("strictMode"), true}}));
}

TEST_F(FileDefaultsTest, changes_without_pause_do_not_put_the_write_off) {
    open();
    for (int i = 0; i < 10; ++i) {
        store->set(QStringLiteral("microInterval"), double(i));
        loop.advance(0.1);
    }
    EXPECT_FALSE(content().isEmpty());
}

TEST_F(FileDefaultsTest, a_lazy_change_alone_is_on_disk_within_a_minute_and_no_sooner_than_needed) {
    open();
    int encodings = 0;
    int seconds = 0;
    store->setLazily(QStringLiteral("stats.days"), [&] { return ++encodings, QByteArray::number(seconds); });
    for (; seconds < 50; ++seconds) {
        store->noteChange(QStringLiteral("stats.days"));
        loop.advance(1);
    }
    EXPECT_EQ(encodings, 0);
    EXPECT_EQ(files(), QStringList());
    loop.advance(10);
    EXPECT_EQ(encodings, 1);
    EXPECT_EQ(get<QByteArray>(reopen(), "stats.days"), "50");
}

TEST_F(FileDefaultsTest, a_lazy_value_that_changes_again_is_on_disk_within_another_minute) {
    QByteArray days("old");
    open().setLazily(QStringLiteral("stats.days"), [&] { return days; });
    loop.advance(60);
    days = "new";
    store->noteChange(QStringLiteral("stats.days"));
    loop.advance(60);
    EXPECT_EQ(get<QByteArray>(reopen(), "stats.days"), "new");
}

TEST_F(FileDefaultsTest, a_change_takes_the_lazy_ones_along) {
    open().setLazily(QStringLiteral("stats.days"), [] { return QByteArray("{}"); });
    loop.advance(10);
    store->set(QStringLiteral("strictMode"), true);
    loop.advance(1);
    EXPECT_TRUE(object().contains(QStringLiteral("stats.days")));
}

TEST_F(FileDefaultsTest, a_lazy_value_is_read_as_it_is_now) {
    open();
    QByteArray days("old");
    store->setLazily(QStringLiteral("stats.days"), [&] { return days; });
    days = "new";
    EXPECT_EQ(get<QByteArray>(*store, "stats.days"), "new");
}

TEST_F(FileDefaultsTest, an_encoder_without_a_value_leaves_what_is_stored) {
    put(R"({"stats.days": {"data": "e30="}})");
    open().setLazily(QStringLiteral("stats.days"), [] { return std::nullopt; });
    EXPECT_EQ(get<QByteArray>(*store, "stats.days"), "{}");
    loop.advance(60);
    EXPECT_EQ(get<QByteArray>(reopen(), "stats.days"), "{}");
}

TEST_F(FileDefaultsTest, a_value_replaces_an_encoder_and_the_other_way_round) {
    open().setLazily(QStringLiteral("key"), [] { return QStringLiteral("lazy"); });
    store->set(QStringLiteral("key"), QStringLiteral("plain"));
    EXPECT_EQ(get<QString>(*store, "key"), QStringLiteral("plain"));
    store->setLazily(QStringLiteral("key"), [] { return QStringLiteral("lazy"); });
    store->flush();
    EXPECT_EQ(get<QString>(reopen(), "key"), QStringLiteral("lazy"));
}

TEST_F(FileDefaultsTest, a_path_with_a_percent_sign_is_like_any_other) {
    folder = home.filePath(QStringLiteral("50%1 %2"));
    path = folder + QStringLiteral("/defaults.json");
    for (int i = 0; i < 2; ++i) {
        put("damaged");
        reopen();
    }
    store->set(QStringLiteral("key"), true);
    store->flush();
    EXPECT_EQ(files(), QStringList({QStringLiteral("defaults.json"),
                                    QStringLiteral("defaults.json.broken-20260302T090000Z"),
                                    QStringLiteral("defaults.json.broken-20260302T090000Z-2")}));
}

TEST_F(FileDefaultsTest, flushing_writes_at_once) {
    open().setLazily(QStringLiteral("stats.days"), [] { return QByteArray("{}"); });
    store->flush();
    EXPECT_TRUE(object().contains(QStringLiteral("stats.days")));
}

TEST_F(FileDefaultsTest, a_removed_key_is_gone_from_the_file) {
    put(R"({"phonePairToken": "secret", "other": 1})");
    open().remove(QStringLiteral("phonePairToken"));
    EXPECT_EQ(store->value(QStringLiteral("phonePairToken")), std::nullopt);
    loop.advance(1);
    EXPECT_EQ(object(), QJsonObject({{QStringLiteral("other"), 1}}));
}

TEST_F(FileDefaultsTest, nothing_is_written_when_nothing_changed) {
    const QByteArray original = R"({"strictMode":true,"stats.days":{"data":"e30="}})";
    put(original);
    open();
    store->set(QStringLiteral("strictMode"), true);
    store->setLazily(QStringLiteral("stats.days"), [] { return QByteArray("{}"); });
    store->remove(QStringLiteral("missing"));
    EXPECT_LE(loop.timerCount(), 1u);
    loop.advance(3600);
    store->flush();
    EXPECT_EQ(content(), original);
    EXPECT_EQ(loop.timerCount(), 0u);
}

TEST_F(FileDefaultsTest, an_unusable_file_is_set_aside_and_the_store_starts_empty) {
    const QByteArray damaged[] = {
        "",      "{\"strictMode\": true",    QByteArray("\x7f\x45LF\0\0\xff", 7), "[1]", "1",
        "{} {}", QByteArray(20'000'000, 'x')};
    for (const auto &bytes : damaged) {
        put(bytes);
        EXPECT_EQ(open().value(QStringLiteral("strictMode")), std::nullopt);
        EXPECT_EQ(files(), QStringList{QStringLiteral("defaults.json.broken-20260302T090000Z")});
        QFile::rename(folder + QLatin1Char('/') + files().value(0), path);
        EXPECT_EQ(content(), bytes);
    }
}

TEST_F(FileDefaultsTest, setting_aside_never_overwrites_what_was_set_aside_earlier) {
    for (const char *bytes : {"first", "second", "third"}) {
        put(bytes);
        open();
    }
    EXPECT_EQ(files(), QStringList({QStringLiteral("defaults.json.broken-20260302T090000Z"),
                                    QStringLiteral("defaults.json.broken-20260302T090000Z-2"),
                                    QStringLiteral("defaults.json.broken-20260302T090000Z-3")}));
}

TEST_F(FileDefaultsTest, after_a_damaged_file_the_store_works_as_ever) {
    put("garbage");
    open().set(QStringLiteral("strictMode"), true);
    loop.advance(1);
    EXPECT_TRUE(get<bool>(reopen(), "strictMode"));
}

TEST_F(FileDefaultsTest, what_is_no_regular_file_is_set_aside_and_never_opened) {
    QDir().mkpath(path);
    open().set(QStringLiteral("strictMode"), true);
    loop.advance(1);
    EXPECT_TRUE(get<bool>(reopen(), "strictMode"));
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).data(), 0600), 0);
    open().set(QStringLiteral("strictMode"), true);
    loop.advance(1);
    EXPECT_TRUE(get<bool>(reopen(), "strictMode"));
}

TEST_F(FileDefaultsTest, a_linked_file_stays_a_link) {
    const QString target = home.filePath(QStringLiteral("dotfiles.json"));
    put(R"({"known": 1})");
    ASSERT_TRUE(QFile::rename(path, target));
    ASSERT_TRUE(QFile::link(target, path));
    open().set(QStringLiteral("known"), qint64{2});
    loop.advance(1);
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_EQ(object(), QJsonObject({{QStringLiteral("known"), 2}}));
}

TEST_F(FileDefaultsTest, what_a_killed_process_left_half_written_is_cleared_away) {
    put("{}");
    QFile left(path + QStringLiteral(".new-a1B2c3"));
    ASSERT_TRUE(left.open(QFile::WriteOnly));
    open();
    EXPECT_EQ(files(), QStringList{QStringLiteral("defaults.json")});
}

} // namespace pavonel::test
