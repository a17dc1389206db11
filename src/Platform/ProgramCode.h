#pragma once

namespace pavonel {

/// Gives the memory that the code of the program and of its libraries takes back to the system. It has that
/// code in files: what runs next is there again within microseconds, and what does not run stays away.
void returnCode();

} // namespace pavonel
