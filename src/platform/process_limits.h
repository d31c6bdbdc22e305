// What the helper process gives up before it touches foreign bytes.
#pragma once

#include <cstdint>

namespace brushwork::platform {

struct ProcessLimits {
    std::uint64_t addressSpace = 0;  // bytes; 0: no limit
    std::uint32_t cpuSeconds = 0;    // of processor time; 0: no limit
    bool confine = true;             // no new programs or processes, no network
};

// Takes hold for the rest of the process's life. What the system can't do is left out: a limit
// here is a second wall behind the checks of the decoders, not the first. A limit that was there
// and is lower stays. Signals clean up as by cleanUpOnSignals(EndWithFailure).
void applyProcessLimits(const ProcessLimits& limits);

}  // namespace brushwork::platform
