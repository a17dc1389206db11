#include "Platform/Posix/BorrowedDefaults.h"

#include "Platform/DefaultsFolder.h"
#include "Platform/Posix/FileLock.h"

namespace pavonel::test {

namespace {

const QString key = QStringLiteral("lastUpdateCheck");

struct BorrowedDefaultsTest : DefaultsFolder {
    QString lock = folder + QStringLiteral("/lock");
    BorrowedDefaults borrowed{path, lock, loop};
};

} // namespace

TEST_F(BorrowedDefaultsTest, what_is_set_is_in_the_store_at_once_beside_all_else) {
    put(R"({"microInterval": 900})");
    borrowed.set(key, true);
    EXPECT_EQ(object(), (QJsonObject{{QStringLiteral("microInterval"), 900}, {key, true}}));
    EXPECT_EQ(borrowed.value(key), StoredValue(true));
    borrowed.remove(key);
    bool lazy = false;
    borrowed.setLazily(QStringLiteral("lazy"), [&] { return StoredValue(lazy); });
    EXPECT_EQ(object(),
              (QJsonObject{{QStringLiteral("microInterval"), 900}, {QStringLiteral("lazy"), false}}));
    lazy = true;
    borrowed.noteChange(QStringLiteral("lazy"));
    EXPECT_EQ(object(),
              (QJsonObject{{QStringLiteral("microInterval"), 900}, {QStringLiteral("lazy"), true}}));
}

TEST_F(BorrowedDefaultsTest, what_another_wrote_in_between_stays) {
    EXPECT_EQ(borrowed.value(key), std::nullopt);
    put(R"({"microInterval": 900})");
    borrowed.set(key, true);
    EXPECT_EQ(object(), (QJsonObject{{QStringLiteral("microInterval"), 900}, {key, true}}));
}

TEST_F(BorrowedDefaultsTest, the_store_of_a_running_program_is_left_alone) {
    put("half of a st"); // as only its owner may judge
    const FileLock running(lock);
    const QStringList before = files();
    EXPECT_EQ(borrowed.value(key), std::nullopt);
    borrowed.set(key, true);
    borrowed.remove(key);
    borrowed.flush();
    EXPECT_EQ(content(), "half of a st");
    EXPECT_EQ(files(), before);
}

TEST_F(BorrowedDefaultsTest, between_two_uses_the_store_is_free) {
    borrowed.set(key, true);
    EXPECT_EQ(FileLock(lock).state(), FileLock::State::held);
}

} // namespace pavonel::test
