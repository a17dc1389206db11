#include "Platform/Qt/StoreFile.h"

#include "support/files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

struct StoreFileTest : testing::Test {
    void store(const QByteArray &json) const { writeFile(path, json); }
    StoredEntry look() const { return readStoredEntryFrom(path, QStringLiteral("stats.days")); }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.json"));
};

} // namespace

TEST_F(StoreFileTest, what_is_stored_is_found) {
    store(R"({"other": 1, "stats.days": {"data": "e30="}})");
    EXPECT_EQ(look().value, StoredValue(QByteArray("{}")));
    EXPECT_FALSE(look().isDamaged);
}

TEST_F(StoreFileTest, nothing_stored_is_no_damage) {
    EXPECT_EQ(look().value, std::nullopt);
    EXPECT_FALSE(look().isDamaged);
    store("{}");
    EXPECT_EQ(look().value, std::nullopt);
    EXPECT_FALSE(look().isDamaged);
}

TEST_F(StoreFileTest, damage_is_told_and_the_file_left_as_it_is) {
    for (const QByteArray json : {"{\"stats.days\": ", "", R"({"stats.days": {"data": 5}})", "[]"}) {
        store(json);
        EXPECT_EQ(look().value, std::nullopt);
        EXPECT_TRUE(look().isDamaged) << json.constData();
        EXPECT_EQ(readFile(path), json);
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList(QStringLiteral("defaults.json")));
    }
}

TEST_F(StoreFileTest, something_else_in_its_place_is_damage) {
    ASSERT_TRUE(QDir().mkpath(path));
    EXPECT_TRUE(look().isDamaged);
    ASSERT_TRUE(QDir().rmdir(path));
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("nowhere")), path));
    EXPECT_TRUE(look().isDamaged);
}

} // namespace pavonel::test
