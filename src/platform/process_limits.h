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

// Takes hold for the rest of the process's life. What the system can't do is left out: a limit
// here is a second wall behind the checks of the decoders, not the first.
void applyProcessLimits(const ProcessLimits& limits);

// Names a file that must not survive if the process is ended by a signal or by its time limit
// before the matching dropPartialFile. A few can be named at once; more are ignored.
void notePartialFile(std::u16string_view path);
void dropPartialFile(std::u16string_view path);

}  // namespace brushwork::platform
