#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

#include "platform/clean_up.h"
#include "platform/process_limits.h"
#include "platform/sanitizers.h"

namespace brushwork::platform {

namespace {

// RLIM_INFINITY is the largest value.
void setLimit(__rlimit_resource resource, rlim_t soft, rlim_t hard) {
    struct rlimit limit {};
    if (::getrlimit(resource, &limit) != 0) return;
    limit = {std::min(soft, limit.rlim_cur), std::min(hard, limit.rlim_max)};
    ::setrlimit(resource, &limit);
}

#if defined(__x86_64__)
constexpr unsigned auditArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned auditArchitecture = AUDIT_ARCH_AARCH64;
#else
constexpr unsigned auditArchitecture = 0;
#endif

// System calls that answer "not permitted" from now on. Threads may still be made through clone.
constexpr long deniedCalls[] = {
    __NR_execve,
    __NR_execveat,
    __NR_socket,
    __NR_socketpair,
    __NR_connect,
    __NR_bind,
    __NR_listen,
    __NR_accept,
    __NR_accept4,
    __NR_ptrace,
    __NR_process_vm_readv,
    __NR_process_vm_writev,
    __NR_kill,
    __NR_bpf,
    __NR_pidfd_open,
    __NR_pidfd_send_signal,
    __NR_io_uring_setup,
    __NR_io_uring_enter,
    __NR_io_uring_register,
#if defined(__NR_fork)
    __NR_fork,
    __NR_vfork,
#endif
};

void confineSystemCalls() {
    if (auditArchitecture == 0) return;
    constexpr unsigned numberAt = offsetof(seccomp_data, nr);
    constexpr unsigned architectureAt = offsetof(seccomp_data, arch);
    constexpr unsigned flagsAt = offsetof(seccomp_data, args);  // low word of the first argument
    constexpr unsigned deny = SECCOMP_RET_ERRNO | EPERM;
    std::array<sock_filter, 64> program{};
    std::size_t count = 0;
    const auto add = [&](sock_filter step) { program[count++] = step; };
    // Foreign calling conventions are refused outright.
    add(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, architectureAt));
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, auditArchitecture, 1, 0));
    add(BPF_STMT(BPF_RET | BPF_K, deny));
    add(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, numberAt));
#if defined(__x86_64__)
    add(BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, 0x40000000U, 0, 1));  // the x32 numbering
    add(BPF_STMT(BPF_RET | BPF_K, deny));
#endif
    for (const long call : deniedCalls) {
        add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
        add(BPF_STMT(BPF_RET | BPF_K, deny));
    }
    // clone3 hides its flags from a filter; "no such call" makes the C library fall back to clone.
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_clone3, 0, 1));
    add(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS));
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_clone, 0, 3));
    add(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, flagsAt));
    add(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, CLONE_THREAD, 1, 0));
    add(BPF_STMT(BPF_RET | BPF_K, deny));
    add(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));

    sock_fprog filter{};
    filter.len = static_cast<unsigned short>(count);
    filter.filter = program.data();
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return;
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0);
}

}  // namespace

void applyProcessLimits(const ProcessLimits& limits) {
    setLimit(RLIMIT_CORE, 0, 0);
    if (limits.cpuSeconds != 0)
        setLimit(RLIMIT_CPU, limits.cpuSeconds, rlim_t{limits.cpuSeconds} + 5);
    if (limits.addressSpace != 0 && !sanitized)
        setLimit(RLIMIT_AS, limits.addressSpace, limits.addressSpace);
    if (limits.confine && !sanitized) confineSystemCalls();
    // Last, so that the thread that it makes is confined as well.
    cleanUpOnSignals(AfterCleanUp::EndWithFailure);
}

}  // namespace brushwork::platform
