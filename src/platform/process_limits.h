// What the helper process gives up before it touches foreign bytes, and what it cleans up when it
// is ended from outside.
#pragma once

#include <cstdint>
#include <string_view>

namespace brushwork::platform {

struct ProcessLimits {
    std::uint64_t addressSpace = 0;  // bytes; 0: no limit
    std::uint32_t cpuSeconds = 0;    // of processor time; 0: no limit
    bool confine = true;             // no new programs or processes, no network
};

// What happens to the process after its partial files are gone.
enum class AfterCleanUp {
    EndWithFailure,  // it ends with -1
    EndBySignal,     // it ends as the signal would have ended it
};

// From now on a signal that ends the process has noted files removed and noted children told to end
// first. Writing to a closed pipe or beyond a file size limit becomes an ordinary failure.
void cleanUpOnSignals(AfterCleanUp after);

// Takes hold for the rest of the process's life. What the system can't do is left out: a limit
// here is a second wall behind the checks of the decoders, not the first. A limit that was there
// and is lower stays. Signals clean up as by cleanUpOnSignals(EndWithFailure).
void applyProcessLimits(const ProcessLimits& limits);

// Names a file that must not survive if the process is ended by a signal or by its time limit
// before the matching dropPartialFile. So many can be named at once; more are ignored. Any thread.
inline constexpr int partialFileRoom = 48;  // what sixteen requests to the helper name
void notePartialFile(std::u16string_view path);
void dropPartialFile(std::u16string_view path);

// A process that this one waits for, by the system's number, until it is dropped. 64 can be noted
// at once; more are ignored. Any thread.
void noteRunningChild(std::int64_t process);
void dropRunningChild(std::int64_t process);

}  // namespace brushwork::platform
