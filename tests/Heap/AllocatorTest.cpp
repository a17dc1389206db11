#include "Platform/Allocator.h"

#include <QByteArray>
#include <QFile>

#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

namespace pavonel::test {

TEST(Allocator, a_picture_that_is_freed_goes_back_to_the_system_each_time) {
    constexpr std::size_t mebibyte = 1024 * 1024;
    constexpr std::size_t picture = 8 * mebibyte; // of 1920 times 1080 pixels
    returnFreedMemory();
    for (int turn = 1; turn <= 3; ++turn) {
        ASSERT_EQ(QByteArray(picture, 'x').back(), 'x');
        EXPECT_LT(mallinfo2().fordblks, mebibyte) << "free and kept after picture " << turn;
    }
}

namespace {

/// Bytes.
std::size_t resident() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(statm.open(QIODevice::ReadOnly));
    return statm.readAll().split(' ').value(1).toULongLong() *
           static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

} // namespace

TEST(Allocator, what_is_free_between_blocks_in_use_goes_back_when_that_is_asked_for) {
    constexpr std::size_t block = 1000;
    constexpr std::size_t blocks = 8192;
    constexpr std::size_t kept = 64; // each so many-th
    returnFreedMemory();
    QByteArrayList all;
    for (std::size_t i = 0; i < blocks; ++i)
        all.append(QByteArray(block, 'x'));
    for (std::size_t i = 0; i < blocks; ++i) {
        if (i % kept != 0)
            all[static_cast<qsizetype>(i)].clear();
    }
    const std::size_t before = resident();
    returnFreePages();
    EXPECT_LT(resident() + block * blocks / 2, before);
}

} // namespace pavonel::test
