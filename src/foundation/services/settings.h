// The environment variables that set the system up, each read once, when it is first asked for.
#pragma once

#include <cstdint>

namespace brushwork {

// What the helper process allows itself. A variable that isn't a whole number counts as unset.
struct BridgeSettings {
    // INKATELIER_BRIDGE_MEMORY_MIB: address space of the helper; 0 lifts the limit.
    std::uint64_t addressSpace = std::uint64_t{4096} << 20;
    // INKATELIER_BRIDGE_CPU_SECONDS: processor time of the helper; 0 lifts the limit.
    std::uint32_t cpuSeconds = 300;
    // INKATELIER_BRIDGE_PIXELS_MIB: largest pixel file that the helper writes; 0 lifts the limit.
    std::uint64_t pixelFileBytes = std::uint64_t{4096} << 20;
    // INKATELIER_BRIDGE_CONFINE: 0 leaves the helper the right to start processes and use the
    // network, for hosts whose image libraries need that.
    bool confine = true;
};

[[nodiscard]] const BridgeSettings& bridgeSettings();

// Forgets what was read, so that a test can set variables and read them again. Not while another
// thread reads settings.
void resetSettings();

}  // namespace brushwork
