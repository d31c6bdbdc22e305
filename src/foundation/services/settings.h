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

// Of the page cache. A variable counts as set whatever its value.
struct CacheSettings {
    // ZENON_ZC_SMARTIMAGE_CHECKING: each list operation checks all lists; page memory is filled
    // with patterns when it is taken and given back.
    bool checking = false;
    // ZENON_ZC_USE_OLD_IMAGEID: smart images are told by their class name.
    bool oldImageId = false;
};

[[nodiscard]] const CacheSettings& cacheSettings();

// Of the tablet's pressure. A variable that begins with no number, or whose number isn't between 0
// and 1, counts as unset; what follows the number doesn't matter.
struct PressureSettings {
    float hardness = 0.5f;    // SID_PRESSURE_HARDNESS
    float threshold = 0.15f;  // SID_PRESSURE_THRESHOLD
    float smoothness = 0.2f;  // SID_PRESSURE_SMOOTHNESS
};

[[nodiscard]] const PressureSettings& pressureSettings();

// Of undo: SID_UNDO_DISABLE of exactly "1" turns it off for the process.
[[nodiscard]] bool undoDisabled();

// Forgets what was read, so that a test can set variables and read them again. Not while another
// thread reads settings.
void resetSettings();

}  // namespace brushwork
