#pragma once

#include <QFile>

#include <sys/syscall.h>
#include <unistd.h>

namespace pavonel::test {

/// Whether a process can give up files for good here.
inline bool knowsLandlock() {
    constexpr long create = 444;
    constexpr int askVersion = 1;
    return ::syscall(create, nullptr, 0, askVersion) >= 1;
}

/// Whether it can give up calls of the kernel.
inline bool knowsSeccomp() {
    return QFile::exists(QStringLiteral("/proc/sys/kernel/seccomp/actions_avail"));
}

} // namespace pavonel::test
