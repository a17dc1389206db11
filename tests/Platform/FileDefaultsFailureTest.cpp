#include "Platform/DefaultsFolder.h"
#include "support/InChild.h"

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

struct FileDefaultsFailure : DefaultsFolder {
    FileDefaultsFailure() { QDir().mkpath(folder); }

    void asNobody(const std::function<void()> &action) {
        for (const QString &name : {home.path(), home.filePath(QStringLiteral("config")), folder, path}) {
            if (QFile::exists(name))
                giveToNobody(QFile::encodeName(name).data());
        }
        inChild([&] {
            becomeNobody();
            action();
        });
    }

    void setMode(const QString &name, mode_t mode) const {
        EXPECT_EQ(::chmod(QFile::encodeName(name).data(), mode), 0) << name.toStdString();
    }

    /// Tries at each moment at which the store does, until then in vain.
    void expectWrittenBy(Seconds limit) {
        loop.advance(limit);
        EXPECT_TRUE(object().value(strictMode).toBool());
    }
};

/// No file of this process may grow beyond this; stands for a disk that fills up in the middle of a write.
void limitFiles(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, RLIM_INFINITY};
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

} // namespace

TEST_F(FileDefaultsFailure, in_a_read_only_folder_the_store_works_in_memory_and_writes_when_it_may) {
    put(R"({"known": 1})");
    setMode(folder, 0500);
    asNobody([this] {
        open().set(strictMode, true);
        EXPECT_EQ(get<qint64>(*store, "known"), 1);
        loop.advance(3600);
        EXPECT_TRUE(get<bool>(*store, "strictMode"));
        EXPECT_EQ(content(), R"({"known": 1})");
        setMode(folder, 0700);
        expectWrittenBy(600);
        EXPECT_TRUE(object().contains(QStringLiteral("known")));
    });
}

TEST_F(FileDefaultsFailure, a_folder_that_cannot_be_made_starts_an_empty_store) {
    ASSERT_TRUE(QDir().rmdir(folder));
    setMode(home.filePath(QStringLiteral("config")), 0500);
    asNobody([this] {
        open().set(strictMode, true);
        loop.advance(10);
        EXPECT_FALSE(QFile::exists(folder));
        setMode(home.filePath(QStringLiteral("config")), 0700);
        expectWrittenBy(60);
    });
}

TEST_F(FileDefaultsFailure, a_file_in_the_place_of_the_folder_is_left_alone) {
    ASSERT_TRUE(QDir().rmdir(folder));
    QFile file(folder);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    open().set(strictMode, true);
    loop.advance(60);
    EXPECT_TRUE(get<bool>(*store, "strictMode"));
    EXPECT_TRUE(QFileInfo(folder).isFile());
}

TEST_F(FileDefaultsFailure, a_file_that_may_not_be_read_is_set_aside_whole) {
    put(R"({"known": 1})");
    setMode(path, 0);
    asNobody([this] {
        open().set(strictMode, true);
        EXPECT_EQ(store->value(QStringLiteral("known")), std::nullopt);
        expectWrittenBy(1);
        const QString aside = folder + QLatin1Char('/') + files().value(1);
        setMode(aside, 0600);
        QFile file(aside);
        ASSERT_TRUE(file.open(QFile::ReadOnly));
        EXPECT_EQ(file.readAll(), R"({"known": 1})");
    });
}

TEST_F(FileDefaultsFailure, a_file_that_the_disk_does_not_give_is_set_aside) {
    ASSERT_TRUE(QFile::link(QStringLiteral("/proc/self/mem"), path)); // its first bytes are an I/O error
    open().set(strictMode, true);
    expectWrittenBy(1);
    EXPECT_FALSE(QFileInfo(path).isSymLink());
    EXPECT_EQ(files().size(), 2);
}

TEST_F(FileDefaultsFailure, what_could_not_be_set_aside_is_not_overwritten_until_it_can) {
    put("garbage");
    setMode(folder, 0500);
    asNobody([this] {
        open().set(strictMode, true);
        loop.advance(3600);
        EXPECT_EQ(content(), "garbage");
        setMode(folder, 0700);
        expectWrittenBy(600);
        EXPECT_EQ(files().size(), 2);
    });
}

TEST_F(FileDefaultsFailure, a_file_that_turns_up_later_is_set_aside_and_not_overwritten) {
    open().set(strictMode, true);
    put(R"({"known": 1})");
    expectWrittenBy(1);
    EXPECT_EQ(files().size(), 2);
}

TEST_F(FileDefaultsFailure, a_disk_that_fills_up_within_a_write_costs_nothing) {
    open().set(QStringLiteral("known"), qint64{1});
    store->flush();
    inChild([this] {
        limitFiles(1000);
        store->set(QStringLiteral("message"), QString(5000, QLatin1Char('x')));
        store->set(strictMode, true);
        loop.advance(60);
        EXPECT_EQ(object(), QJsonObject({{QStringLiteral("known"), 1}}));
        EXPECT_EQ(files(), QStringList{QStringLiteral("defaults.json")});
        limitFiles(RLIM_INFINITY);
        expectWrittenBy(600);
        EXPECT_EQ(object().size(), 3);
    });
}

TEST_F(FileDefaultsFailure, a_full_disk_costs_nothing) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    inChild([this] {
        mountEmpty(QFile::encodeName(folder).data(), 64);
        open().set(QStringLiteral("known"), qint64{1});
        loop.advance(1);
        QFile filler(folder + QStringLiteral("/filler"));
        ASSERT_TRUE(filler.open(QFile::WriteOnly | QFile::Unbuffered));
        while (filler.write(QByteArray(1024, 'x')) > 0) {
        }
        store->set(strictMode, true);
        loop.advance(60);
        EXPECT_EQ(object(), QJsonObject({{QStringLiteral("known"), 1}}));
        EXPECT_EQ(files().size(), 2);
        EXPECT_TRUE(get<bool>(*store, "strictMode"));
        ASSERT_TRUE(filler.remove());
        expectWrittenBy(600);
        EXPECT_EQ(get<qint64>(reopen(), "known"), 1);
    });
}

TEST_F(FileDefaultsFailure, a_full_disk_starts_the_store_all_the_same) {
    if (!mayMount())
        GTEST_SKIP() << "This machine does not let a test mount a small disk.";
    inChild([this] {
        mountEmpty(QFile::encodeName(folder).data(), 64);
        put("garbage");
        QFile filler(folder + QStringLiteral("/filler"));
        ASSERT_TRUE(filler.open(QFile::WriteOnly | QFile::Unbuffered));
        while (filler.write(QByteArray(1024, 'x')) > 0) {
        }
        open().set(strictMode, true);
        loop.advance(60);
        EXPECT_EQ(files(), QStringList({QStringLiteral("defaults.json.broken-20260302T090000Z"),
                                        QStringLiteral("filler")}));
    });
}

namespace {

/// Counts the attempts: each finds the folder replaced by a file, and nothing else touches it.
struct FileDefaultsRetry : FileDefaultsFailure {
    /// When the attempts are made, in seconds since now, found by letting each be the one that succeeds.
    Seconds secondsUntilWritten(Seconds repairAfter) {
        QTemporaryDir other;
        VirtualMainLoop clock;
        const QString blocked = other.filePath(QStringLiteral("pavonel"));
        QFile file(blocked);
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        FileDefaults tried(blocked + QStringLiteral("/defaults.json"), clock,
                           FileDefaults::Writing::onTheCallersThread);
        tried.set(strictMode, true);
        for (Seconds passed = 0;; passed += 0.5) {
            if (passed >= repairAfter)
                file.remove();
            if (QFile::exists(blocked + QStringLiteral("/defaults.json")) || passed > 7200)
                return passed;
            tried.setLazily(QStringLiteral("stats.days"), [=] { return passed; });
            clock.advance(0.5);
        }
    }
};

} // namespace

TEST_F(FileDefaultsRetry, a_failed_write_is_tried_again_soon_and_then_ever_more_rarely) {
    EXPECT_LE(secondsUntilWritten(2), 6);
    EXPECT_LE(secondsUntilWritten(6), 16);
    EXPECT_GE(secondsUntilWritten(600), 630);
    EXPECT_LE(secondsUntilWritten(5000), 5600);
}

TEST_F(FileDefaultsRetry, a_new_change_is_tried_at_once) {
    ASSERT_TRUE(QDir().rmdir(folder));
    QFile file(folder);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    open().set(QStringLiteral("known"), qint64{1});
    loop.advance(3600);
    ASSERT_TRUE(file.remove());
    store->set(strictMode, true);
    expectWrittenBy(1);
}

} // namespace pavonel::test
