#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <mutex>
#include <string>

#include "platform/clean_up.h"
#include "platform/clean_up_posix.h"
#include "platform/sanitizers.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

constexpr int failureExit = 255;
constexpr auto longestWait = std::chrono::seconds(5);
constexpr timespec turn{0, 2'000'000};
constexpr std::size_t stackBytes = 256 * 1024;

// Read by a handler of crashes, which takes no lock: fixed storage, and a slot's first byte is
// written last.
std::array<std::array<char, PATH_MAX>, partialFileRoom> partialFiles{};
std::mutex partialFilesLock;  // of those who note and drop
struct RunningChild {
    pid_t process = 0;
    bool told = false;  // to end: a second signal would cut its own clean-up short
};
std::array<RunningChild, 64> runningChildren;
std::mutex runningChildrenLock;

std::atomic<bool> endBySignal{false};
std::atomic<bool> listening{false};
sigset_t endingSignals;
sigset_t maskBefore;

void removePartialFiles() {
    for (const auto& path : partialFiles)
        if (path[0] != '\0') ::unlink(path.data());
}

void endRunningChildren() {
    const std::lock_guard lock(runningChildrenLock);
    for (RunningChild& child : runningChildren) {
        if (child.process == 0 || child.told) continue;
        ::kill(child.process, SIGTERM);
        child.told = true;
    }
}

// A child may still be started meanwhile, by a thread that held before the end began.
void waitForHolds() {
    const auto end = std::chrono::steady_clock::now() + longestWait;
    do {
        endRunningChildren();
        if (!EndingHold::anyLeft()) return;
    } while (::sigtimedwait(&endingSignals, nullptr, &turn) < 0 &&
             std::chrono::steady_clock::now() < end);
}

[[noreturn]] void endProcess(int signal) {
    EndingHold::beginEnd();
    waitForHolds();
    removePartialFiles();
    if (endBySignal) {
        std::signal(signal, SIG_DFL);
        ::pthread_sigmask(SIG_UNBLOCK, &endingSignals, nullptr);
        std::raise(signal);
    }
    ::_exit(failureExit);
}

void* awaitSignal(void*) {
    int signal = 0;
    while (::sigwait(&endingSignals, &signal) != 0) {
    }
    endProcess(signal);
}

void cleanUpAndCrash(int signal) {
    removePartialFiles();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Whether a thread waits for the signals now.
bool startListening() {
    ::sigemptyset(&endingSignals);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT})
        if (!isIgnored(signal)) ::sigaddset(&endingSignals, signal);
    for (const int signal : {SIGXCPU, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2}) {
        ::sigaddset(&endingSignals, signal);
        std::signal(signal, SIG_DFL);  // an ignored one would never arrive
    }
    if (::pthread_sigmask(SIG_BLOCK, &endingSignals, &maskBefore) != 0) return false;
    pthread_attr_t attributes;
    pthread_t thread{};
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setstacksize(&attributes, stackBytes);
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    const bool made = ::pthread_create(&thread, &attributes, awaitSignal, nullptr) == 0;
    ::pthread_attr_destroy(&attributes);
    if (!made) ::pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    return made;
}

void handleCrashes() {
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
    if (sanitized) return;
    struct sigaction action {};
    action.sa_handler = cleanUpAndCrash;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        ::sigaction(signal, &action, nullptr);
}

}  // namespace

void cleanUpOnSignals(AfterCleanUp after) {
    endBySignal = after == AfterCleanUp::EndBySignal;
    handleCrashes();
    if (!listening) listening = startListening();
}

const sigset_t* signalMaskForChildren() {
    return listening ? &maskBefore : nullptr;
}

void noteRunningChild(std::int64_t process) {
    const std::lock_guard lock(runningChildrenLock);
    for (RunningChild& slot : runningChildren) {
        if (slot.process != 0) continue;
        slot = {static_cast<pid_t>(process)};
        return;
    }
}

void dropRunningChild(std::int64_t process) {
    const std::lock_guard lock(runningChildrenLock);
    for (RunningChild& slot : runningChildren)
        if (slot.process == static_cast<pid_t>(process)) slot = {};
}

void notePartialFile(std::u16string_view path) {
    const std::string text = toUtf8(path);
    if (text.empty() || text.size() >= PATH_MAX) return;
    const std::lock_guard lock(partialFilesLock);
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
    const std::lock_guard lock(partialFilesLock);
    for (auto& slot : partialFiles)
        if (text == slot.data()) slot[0] = '\0';
}

}  // namespace brushwork::platform
