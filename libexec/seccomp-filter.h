// The kernel's seccomp, by which a plain process gives up calls of the kernel for good, for itself and for
// what it starts. Where the kernel has none, all of this does nothing.
#pragma once

#include <algorithm>
#include <cerrno>
#include <initializer_list>

#include <seccomp.h>
#include <sys/socket.h>

/// Refuses what leads round the limits of files and of the network: other families of sockets than the given
/// ones, other processes, and interfaces that do as other calls do.
class SeccompFilter {
public:
    explicit SeccompFilter(std::initializer_list<int> families) {
        seccomp_attr_set(filter_, SCMP_FLTATR_CTL_TSYNC, 1); // threads of libraries, too
        refuse({SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
                SCMP_SYS(pidfd_open), SCMP_SYS(kill), SCMP_SYS(tkill), SCMP_SYS(tgkill),
                SCMP_SYS(rt_sigqueueinfo), SCMP_SYS(rt_tgsigqueueinfo), SCMP_SYS(io_uring_setup),
                SCMP_SYS(bpf), SCMP_SYS(userfaultfd), SCMP_SYS(add_key), SCMP_SYS(request_key),
                SCMP_SYS(keyctl)});
        refuse(SCMP_SYS(prlimit64), SCMP_A0(SCMP_CMP_NE, 0));
        for (int family = 0; family < AF_MAX; ++family) {
            if (std::find(families.begin(), families.end(), family) == families.end())
                refuse(SCMP_SYS(socket), SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(family)));
        }
        refuse(SCMP_SYS(socket), SCMP_A0(SCMP_CMP_GE, AF_MAX));
        // One of a pair of these may be turned to any other in the file system.
        constexpr scmp_datum_t kinds = 0xf;
        refuse(SCMP_SYS(socketpair), SCMP_A1(SCMP_CMP_MASKED_EQ, kinds, SOCK_DGRAM));
    }
    SeccompFilter(const SeccompFilter &) = delete;
    SeccompFilter &operator=(const SeccompFilter &) = delete;
    ~SeccompFilter() { seccomp_release(filter_); }

    void refuse(std::initializer_list<int> calls) {
        for (const int call : calls)
            seccomp_rule_add(filter_, SCMP_ACT_ERRNO(EPERM), call, 0);
    }

    void enforce() { seccomp_load(filter_); }

private:
    void refuse(int call, scmp_arg_cmp argument) {
        seccomp_rule_add(filter_, SCMP_ACT_ERRNO(EPERM), call, 1, argument);
    }

    scmp_filter_ctx filter_ = seccomp_init(SCMP_ACT_ALLOW);
};
