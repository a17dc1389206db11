#pragma once

namespace pavonel {

/// Has the heap give back to the system what is freed in it, however large the blocks were, and all threads
/// share one heap. Holds for the whole process; to be called before there are other threads.
void returnFreedMemory();

/// Gives back what is free between blocks in use as well, page by page. It takes as long as the heap is
/// large.
void returnFreePages();

} // namespace pavonel
