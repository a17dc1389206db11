#pragma once

namespace pavonel {

/// Has the heap give back to the system what is freed in it, however large the blocks were. Holds for the
/// whole process.
void returnFreedMemory();

} // namespace pavonel
