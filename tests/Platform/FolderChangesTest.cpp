#include "Platform/Qt/FolderChanges.h"

#include "support/waitUntil.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

#include <gtest/gtest.h>

namespace pavonel {

namespace {

using test::waitUntil;

class FolderChangesTest : public testing::Test {
protected:
    void write(const QString &name) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    QString path(const QString &name) const { return folder.filePath(name); }

    /// Until nothing new is told.
    static void settle(FolderChanges &changes) {
        ASSERT_TRUE(waitUntil([&] { return !changes.any(); }));
    }

    static int watchesOfTheSystem() {
        int count = 0;
        for (const QFileInfo &descriptor :
             QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files | QDir::System))
            count += descriptor.symLinkTarget().endsWith(QStringLiteral("anon_inode:inotify"));
        return count;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(FolderChangesTest, at_first_something_can_be_there) {
    EXPECT_TRUE(FolderChanges({path(QStringLiteral("socket"))}).any());
}

TEST_F(FolderChangesTest, a_file_that_comes_goes_or_is_replaced_is_told_once) {
    FolderChanges changes({path(QStringLiteral("socket"))});
    settle(changes);
    write(QStringLiteral("socket"));
    EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
    settle(changes);
    write(QStringLiteral("new"));
    settle(changes);
    ASSERT_EQ(::rename(qPrintable(path(QStringLiteral("new"))), qPrintable(path(QStringLiteral("socket")))),
              0);
    EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
    settle(changes);
    QFile::remove(path(QStringLiteral("socket")));
    EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
}

TEST_F(FolderChangesTest, a_folder_that_is_missing_can_come_with_its_file_go_and_come_again) {
    FolderChanges changes({path(QStringLiteral("server/deep/socket")), path(QStringLiteral("other"))});
    for (int time = 0; time < 2; ++time) {
        settle(changes);
        ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("server/deep")));
        EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
        settle(changes);
        write(QStringLiteral("server/deep/socket"));
        EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
        settle(changes);
        ASSERT_TRUE(QDir(path(QStringLiteral("server"))).removeRecursively());
        EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
    }
}

TEST_F(FolderChangesTest, all_share_one_watch_of_the_system_and_each_is_told) {
    const int before = watchesOfTheSystem();
    const QStringList socket{path(QStringLiteral("socket"))};
    FolderChanges changes(socket);
    FolderChanges inTheSameFolder({path(QStringLiteral("other"))});
    auto gone = std::make_unique<FolderChanges>(socket);
    for (FolderChanges *each : {&changes, &inTheSameFolder, gone.get()})
        settle(*each);
    EXPECT_EQ(watchesOfTheSystem(), before + 1);
    gone.reset();
    write(QStringLiteral("socket"));
    EXPECT_TRUE(waitUntil([&] { return changes.any(); }));
    EXPECT_TRUE(waitUntil([&] { return inTheSameFolder.any(); }));
}

} // namespace pavonel
