#include "Platform/Allocator.h"

#include <QByteArray>

#include <gtest/gtest.h>
#include <malloc.h>

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

} // namespace pavonel::test
