#include "Platform/Allocator.h"

#include <malloc.h>

namespace pavonel {

/// The C library learns from each large block that is freed to place the next ones among the small ones and
/// to keep them when they go. After one break it would hold on to the pictures of a screen all day. And it
/// gives each thread a heap of its own, where ours seldom meet.
void returnFreedMemory() {
    constexpr int large = 128 * 1024; // its own measures, before it learns
    mallopt(M_MMAP_THRESHOLD, large);
    mallopt(M_TRIM_THRESHOLD, large);
    mallopt(M_ARENA_MAX, 1);
}

void returnFreePages() {
    malloc_trim(0);
}

} // namespace pavonel
