#pragma once

namespace pavonel::test {

/// While there is one, it decides about every fsync and fdatasync of this process, and so about every write
/// that must not get lost. One at a time.
class SlowDisk {
public:
    SlowDisk();
    SlowDisk(const SlowDisk &) = delete;
    SlowDisk &operator=(const SlowDisk &) = delete;
    ~SlowDisk();

    /// Writers wait from now on.
    void hold();
    /// Writers fail from now on.
    void breakDown();
    /// All is well again; those who wait go on.
    void release();

    /// Until a writer has come since the disk was last held or broken.
    bool waitForWriter();
};

} // namespace pavonel::test
