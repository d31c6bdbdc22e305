#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <mutex>

#include "platform/process_limits.h"
#include "platform/sanitizers.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

constexpr int failureExit = 255;

// Read by a signal handler, which takes no lock: fixed storage, and a slot's first byte is written
// last.
std::array<std::array<char, PATH_MAX>, partialFileRoom> partialFiles{};
std::array<std::atomic<pid_t>, 64> runningChildren{};
volatile std::sig_atomic_t endBySignal = 0;

// Of those who note and drop.
std::mutex& partialFilesLock() {
    static std::mutex mutex;
    return mutex;
}

void removePartialFiles() {
    for (const auto& path : partialFiles)
        if (path[0] != '\0') ::unlink(path.data());
}

void endAfterCleanUp(int signal) {
    for (const auto& slot : runningChildren)
        if (const pid_t child = slot.load(); child > 0) ::kill(child, SIGTERM);
    removePartialFiles();
    if (endBySignal == 0) ::_exit(failureExit);
    std::signal(signal, SIG_DFL);
    ::raise(signal);
}

void cleanUpAndCrash(int signal) {
    removePartialFiles();
    std::signal(signal, SIG_DFL);
    ::raise(signal);
}

void handleSignals() {
    struct sigaction action {};
    action.sa_handler = endAfterCleanUp;
    for (const int signal : {SIGXCPU, SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2})
        ::sigaction(signal, &action, nullptr);
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
    if (sanitized) return;
    action.sa_handler = cleanUpAndCrash;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        ::sigaction(signal, &action, nullptr);
}

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

void cleanUpOnSignals(AfterCleanUp after) {
    endBySignal = after == AfterCleanUp::EndBySignal ? 1 : 0;
    handleSignals();
}

void noteRunningChild(std::int64_t process) {
    for (auto& slot : runningChildren) {
        pid_t none = 0;
        if (slot.compare_exchange_strong(none, static_cast<pid_t>(process))) return;
    }
}

void dropRunningChild(std::int64_t process) {
    for (auto& slot : runningChildren) {
        auto child = static_cast<pid_t>(process);
        if (slot.compare_exchange_strong(child, 0)) return;
    }
}

void applyProcessLimits(const ProcessLimits& limits) {
    cleanUpOnSignals(AfterCleanUp::EndWithFailure);
    setLimit(RLIMIT_CORE, 0, 0);
    if (limits.cpuSeconds != 0)
        setLimit(RLIMIT_CPU, limits.cpuSeconds, rlim_t{limits.cpuSeconds} + 5);
    if (limits.addressSpace != 0 && !sanitized)
        setLimit(RLIMIT_AS, limits.addressSpace, limits.addressSpace);
    if (limits.confine && !sanitized) confineSystemCalls();
}

void notePartialFile(std::u16string_view path) {
    const std::string text = toUtf8(path);
    if (text.empty() || text.size() >= PATH_MAX) return;
    const std::lock_guard lock(partialFilesLock());
    for (auto& slot : partialFiles) {
        if (slot[0] != '\0') continue;
        std::memcpy(slot.data() + 1, text.data() + 1, text.size() - 1);
        slot[text.size()] = '\0';
        slot[0] = text[0];
        return;
    }
}

void dropPartialFile(std::u16string_view path) {
    const std::string text = toUtf8(path);
    const std::lock_guard lock(partialFilesLock());
    for (auto& slot : partialFiles)
        if (text == slot.data()) slot[0] = '\0';
}

}  // namespace brushwork::platform
