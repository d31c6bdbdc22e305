// Each case runs in a process of its own, since limits can't be taken back.
#include "platform/process_limits.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <thread>

#include "platform/clean_up.h"
#include "platform/process_calls.h"
#include "platform/sanitizers.h"
#include "platform/swap_io.h"
#include "platform/text_codec.h"
#include "support/scratch_directory.h"

namespace brushwork::platform {
namespace {

// The wait status of a child that runs `body` and ends with its answer. The parent may act on the
// child while it runs.
int inChild(const std::function<int()>& body, const std::function<void(pid_t)>& meanwhile = {}) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(body());
    if (meanwhile) meanwhile(child);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

// Kills the child once it has written `name`.
std::function<void(pid_t)> killOnce(const ScratchDirectory& scratch, const char* name, int signal) {
    return [path = scratch.name(name), signal](pid_t process) {
        while (!std::filesystem::exists(path))
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ::kill(process, signal);
    };
}

TEST(ProcessLimits, TakeAwayProcessesAndTheNetworkButNotThreads) {
    if (sanitized) GTEST_SKIP() << "not confined under a sanitizer";
    const int status = inChild([] {
        applyProcessLimits({0, 0, true});
        if (::fork() != -1 || errno != EPERM) return 2;
        if (::syscall(__NR_io_uring_setup, 1, nullptr) != -1 || errno != EPERM) return 6;
        if (::socket(AF_INET, SOCK_STREAM, 0) != -1 || errno != EPERM) return 3;
        char name[] = "/bin/true";
        char* const arguments[] = {name, nullptr};
        if (::execv(name, arguments) != -1 || errno != EPERM) return 4;
        int answer = 5;
        std::thread([&] { answer = 0; }).join();
        return answer;
    });
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(ProcessLimits, BoundTheAddressSpace) {
    if (sanitized) GTEST_SKIP() << "not bounded under a sanitizer";
    const int status = inChild([] {
        applyProcessLimits({std::uint64_t{512} << 20, 0, false});
        void* small = std::malloc(std::size_t{16} << 20);
        void* large = std::malloc(std::size_t{1} << 30);
        const int answer = small == nullptr ? 2 : large != nullptr ? 3 : 0;
        std::free(small);
        std::free(large);
        return answer;
    });
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(ProcessLimits, PartialFilesGoWhenTheProcessIsEnded) {
    const ScratchDirectory scratch;
    const auto partial = scratch.put("partial", "half");
    const auto kept = scratch.put("kept", "whole");
    const auto child = [&](const ProcessLimits& limits) {
        return [&, limits] {
            applyProcessLimits(limits);
            notePartialFile(scratch.name("kept"));
            notePartialFile(scratch.name("partial"));
            dropPartialFile(scratch.name("kept"));
            scratch.put("ready", "");
            for (volatile unsigned turns = 0;;) turns = turns + 1;  // a compiler may drop less
            return 0;
        };
    };
    const auto check = [&](int status, const char* reason) {
        EXPECT_TRUE(WIFEXITED(status)) << reason;
        EXPECT_EQ(WEXITSTATUS(status), 255) << reason;
        EXPECT_FALSE(std::filesystem::exists(partial)) << reason;
        EXPECT_TRUE(std::filesystem::exists(kept)) << reason;
        scratch.put("partial", "half");
    };
    check(inChild(child({0, 1, false})), "out of processor time");
    std::filesystem::remove(scratch.name("ready"));
    check(inChild(child({0, 0, false}), killOnce(scratch, "ready", SIGTERM)), "terminated");
}

TEST(CleanUp, TheEndWaitsForHoldsAndTheirFiles) {
    const ScratchDirectory scratch;
    const int status = inChild(
        [&] {
            cleanUpOnSignals(AfterCleanUp::EndBySignal);
            {
                const EndingHold hold;
                const EndingHold nested;
                scratch.put("ready", "");
                std::this_thread::sleep_for(std::chrono::milliseconds(200));
                scratch.put("partial", "half");
                notePartialFile(scratch.name("partial"));
                scratch.put("reached", "");
            }
            scratch.put("past", "");
            return 1;
        },
        killOnce(scratch, "ready", SIGTERM));
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_TRUE(std::filesystem::exists(scratch.name("reached")));
    EXPECT_FALSE(std::filesystem::exists(scratch.name("partial")));
    EXPECT_FALSE(std::filesystem::exists(scratch.name("past")));
}

TEST(CleanUp, ChildrenEndFirstAndFindNoSignalBlocked) {
    const ScratchDirectory scratch;
    const std::u16string script = u"trap 'rm -f " + scratch.name("child") + u"; exit 1' TERM; : >" +
                                  scratch.name("child") + u"; sleep 1; sleep 1; sleep 60";
    const int status = inChild(
        [&] {
            cleanUpOnSignals(AfterCleanUp::EndBySignal);
            static_cast<void>(runProcess(u"/bin/sh", {u"-c", script}));
            return 1;
        },
        killOnce(scratch, "child", SIGINT));
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGINT);
    EXPECT_FALSE(std::filesystem::exists(scratch.name("child")));
}

TEST(CleanUp, ASecondSignalEndsAtOnceAndIgnoredOnesStayIgnored) {
    const ScratchDirectory scratch;
    const int status = inChild(
        [&] {
            std::signal(SIGHUP, SIG_IGN);
            cleanUpOnSignals(AfterCleanUp::EndBySignal);
            const EndingHold hold;
            ::kill(::getpid(), SIGHUP);
            scratch.put("ready", "");
            std::this_thread::sleep_for(std::chrono::seconds(60));
            return 1;
        },
        [&](pid_t process) {
            killOnce(scratch, "ready", SIGTERM)(process);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            EXPECT_EQ(::waitpid(process, nullptr, WNOHANG), 0) << "waits for the hold";
            ::kill(process, SIGTERM);
        });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

// The host's own, lower limits stay; writing beyond one of them fails like a full disk.
TEST(ProcessLimits, LowerLimitsOfTheHostStay) {
    const ScratchDirectory scratch;
    const int status = inChild([&] {
        rlimit time{7, RLIM_INFINITY};
        rlimit size{4096, RLIM_INFINITY};
        if (::setrlimit(RLIMIT_CPU, &time) != 0 || ::setrlimit(RLIMIT_FSIZE, &size) != 0) return 2;
        applyProcessLimits({0, 300, false});
        if (::getrlimit(RLIMIT_CPU, &time) != 0 || time.rlim_cur != 7) return 3;
        PositionedFile file;
        if (!file.open(scratch.name("file"), PositionedFile::Mode::CreateNew)) return 4;
        return file.writeAt(8192, "x", 1) ? 5 : 0;
    });
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace brushwork::platform
