#include "Platform/DefaultsFolder.h"
#include "support/SlowDisk.h"
#include "support/waitUntil.h"

#include <atomic>
#include <thread>

namespace pavonel::test {

namespace {

const QString number = QStringLiteral("number");

/// A store that writes on a thread of its own, on a disk that does what a test says.
struct FileDefaultsThread : DefaultsFolder {
    FileDefaultsThread() { store.emplace(path, loop); }
    ~FileDefaultsThread() override { disk.release(); }

    qint64 numberOnDisk() const { return object().value(number).toInteger(); }

    /// Real time for the disk, virtual time for the store.
    bool passesUntil(const std::function<bool()> &condition, Seconds step) {
        return waitUntil([&] {
            loop.advance(step);
            return condition();
        });
    }

    SlowDisk disk;
};

} // namespace

TEST_F(FileDefaultsThread, while_the_disk_is_slow_the_main_thread_goes_on) {
    disk.hold();
    store->set(number, qint64{1});
    loop.advance(1);
    EXPECT_TRUE(disk.waitForWriter());
    store->set(number, qint64{2});
    loop.advance(60);
    EXPECT_EQ(get<qint64>(*store, "number"), 2);
    EXPECT_EQ(content(), "") << "the disk was not slow";
}

TEST_F(FileDefaultsThread, a_change_reaches_the_disk_without_being_flushed) {
    store->set(number, qint64{1});
    loop.advance(1);
    EXPECT_TRUE(waitUntil([&] { return numberOnDisk() == 1; }));
}

TEST_F(FileDefaultsThread, what_changed_during_a_write_is_written_after_it) {
    disk.hold();
    store->set(number, qint64{1});
    loop.advance(1);
    ASSERT_TRUE(disk.waitForWriter());
    store->set(number, qint64{2});
    loop.advance(1);
    disk.release();
    EXPECT_TRUE(passesUntil([&] { return numberOnDisk() == 2; }, 0.1));
    EXPECT_EQ(files(), QStringList{QStringLiteral("defaults.json")});
}

TEST_F(FileDefaultsThread, flushing_waits_until_all_is_on_disk) {
    disk.hold();
    store->set(number, qint64{1});
    loop.advance(1);
    ASSERT_TRUE(disk.waitForWriter());
    store->set(number, qint64{2});
    std::atomic<bool> isReleased = false;
    std::thread releaser([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        isReleased = true;
        disk.release();
    });
    store->flush();
    EXPECT_TRUE(isReleased);
    EXPECT_EQ(numberOnDisk(), 2);
    releaser.join();
}

TEST_F(FileDefaultsThread, a_write_that_failed_is_tried_again) {
    disk.breakDown();
    store->set(strictMode, true);
    loop.advance(1);
    ASSERT_TRUE(disk.waitForWriter());
    disk.release();
    EXPECT_TRUE(passesUntil([&] { return object().value(strictMode).toBool(); }, 1));
}

TEST_F(FileDefaultsThread, a_write_that_failed_just_before_a_flush_is_made_up_for) {
    disk.breakDown();
    store->set(strictMode, true);
    loop.advance(1);
    ASSERT_TRUE(disk.waitForWriter());
    disk.release();
    store->flush();
    EXPECT_TRUE(object().value(strictMode).toBool());
}

TEST_F(FileDefaultsThread, flushing_gives_up_on_a_disk_that_stopped_answering) {
    disk.hold();
    store->set(number, qint64{1});
    store->flush();
    EXPECT_EQ(content(), "") << "the disk answered";
    disk.release();
    EXPECT_TRUE(passesUntil([&] { return numberOnDisk() == 1; }, 1)) << "what was given up is lost";
}

TEST_F(FileDefaultsThread, saving_does_not_wait_for_the_disk) {
    disk.hold();
    store->set(number, qint64{1});
    store->save();
    EXPECT_TRUE(disk.waitForWriter());
    EXPECT_EQ(content(), "") << "the disk answered";
}

TEST_F(FileDefaultsThread, a_store_that_goes_does_not_wait_for_its_write_and_lets_it_end) {
    disk.hold();
    store->set(number, qint64{1});
    loop.advance(1);
    ASSERT_TRUE(disk.waitForWriter());
    store.reset();
    disk.release();
    EXPECT_TRUE(waitUntil([&] { return numberOnDisk() == 1; }));
    loop.advance(60); // news of the write may be waiting there
}

TEST_F(FileDefaultsThread, nothing_is_left_to_do_after_a_write) {
    store->set(number, qint64{1});
    EXPECT_TRUE(passesUntil([&] { return numberOnDisk() == 1 && loop.timerCount() == 0; }, 0.1));
}

} // namespace pavonel::test
