// What the processor can do, and how many there are.
#pragma once

#include <cstdint>

namespace brushwork::platform {

// Nine bytes, each 0 or 1. AVX counts only where the system saves its registers too.
struct ProcessorFlags {
    std::uint8_t mmx = 0;
    std::uint8_t sse = 0;
    std::uint8_t sse2 = 0;
    std::uint8_t sse3 = 0;
    std::uint8_t sse41 = 0;
    std::uint8_t sse42 = 0;
    std::uint8_t avx = 0;
    std::uint8_t avx2 = 0;
    std::uint8_t noScalar = 0;  // would switch the scalar loops off; always 0

    friend bool operator==(const ProcessorFlags&, const ProcessorFlags&) = default;
};
static_assert(sizeof(ProcessorFlags) == 9);

// What the identification instruction answered; all zero on a processor without it.
struct ProcessorLeaves {
    std::uint32_t highest = 0;  // leaf
    bool isGenuineIntel = false;
    std::uint32_t ebx1 = 0, ecx1 = 0, edx1 = 0;
    std::uint32_t eax4 = 0;
    std::uint32_t ebx7 = 0;
    bool savesWideRegisters = false;
};

[[nodiscard]] ProcessorLeaves readProcessorLeaves() noexcept;
[[nodiscard]] ProcessorFlags flagsOf(const ProcessorLeaves& leaves) noexcept;
// 1 where the processor doesn't tell.
[[nodiscard]] int coresOf(const ProcessorLeaves& leaves) noexcept;

// The flags of this machine, read once.
[[nodiscard]] const ProcessorFlags& processorFlags() noexcept;
[[nodiscard]] int physicalProcessorCount() noexcept;
// As the system reports it; at least 1.
[[nodiscard]] int logicalProcessorCount() noexcept;

}  // namespace brushwork::platform
