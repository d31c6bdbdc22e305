#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "platform/clean_up.h"
#include "platform/clean_up_win32.h"
#include "platform/process_limits.h"

namespace brushwork::platform {

namespace {

constexpr DWORD watchMilliseconds = 200;
constexpr std::uint64_t ticksPerSecond = 10'000'000;  // of 100 ns
constexpr std::uint32_t hardSecondsBehind = 5;

std::uint64_t asTicks(const FILETIME& time) {
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

std::atomic<std::uint64_t> processorTicksAllowed{0};

// A job ends its process without a last word, so the limit is watched from inside as well.
DWORD WINAPI watchProcessorTime(void*) {
    for (;;) {
        ::Sleep(watchMilliseconds);
        FILETIME created{}, ended{}, kernel{}, user{};
        if (!::GetProcessTimes(::GetCurrentProcess(), &created, &ended, &kernel, &user)) continue;
        if (asTicks(kernel) + asTicks(user) < processorTicksAllowed.load()) continue;
        endWithFailure();
    }
}

void startWatching(std::uint32_t seconds) {
    const bool running = processorTicksAllowed.exchange(seconds * ticksPerSecond) != 0;
    if (running) return;
    constexpr SIZE_T stackBytes = 256 * 1024;
    const HANDLE thread = ::CreateThread(nullptr, stackBytes, watchProcessorTime, nullptr,
                                         STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (!thread) return;
    ::SetThreadPriority(thread, THREAD_PRIORITY_ABOVE_NORMAL);
    ::CloseHandle(thread);
}

// Puts the process into a job of its own. Systems that know no job within a job refuse where the
// process is in one already.
void enterJob(const ProcessLimits& limits) {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION information{};
    auto& basic = information.BasicLimitInformation;
    basic.LimitFlags = JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    if (limits.addressSpace != 0) {
        basic.LimitFlags |= JOB_OBJECT_LIMIT_PROCESS_MEMORY;
        information.ProcessMemoryLimit =
            static_cast<SIZE_T>(std::min<std::uint64_t>(limits.addressSpace, ~SIZE_T{0}));
    }
    if (limits.cpuSeconds != 0) {
        basic.LimitFlags |= JOB_OBJECT_LIMIT_PROCESS_TIME;
        basic.PerProcessUserTimeLimit.QuadPart = static_cast<LONGLONG>(
            (std::uint64_t{limits.cpuSeconds} + hardSecondsBehind) * ticksPerSecond);
    }
    if (limits.confine) {
        basic.LimitFlags |= JOB_OBJECT_LIMIT_ACTIVE_PROCESS;
        basic.ActiveProcessLimit = 1;
    }
    const HANDLE job = ::CreateJobObjectW(nullptr, nullptr);
    if (!job) return;
    if (::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &information,
                                  sizeof information))
        ::AssignProcessToJobObject(job, ::GetCurrentProcess());
    // The job goes on for as long as its process does. Ending it with its last handle would end
    // this process now, and there are no others in it.
    ::CloseHandle(job);
}

}  // namespace

void applyProcessLimits(const ProcessLimits& limits) {
    cleanUpOnSignals(AfterCleanUp::EndWithFailure);
    if (limits.cpuSeconds != 0) startWatching(limits.cpuSeconds);
    enterJob(limits);
}

}  // namespace brushwork::platform
