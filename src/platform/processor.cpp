#include "platform/processor.h"

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#endif

namespace brushwork::platform {

namespace {

constexpr std::uint8_t bit(std::uint32_t word, int index) noexcept {
    return static_cast<std::uint8_t>(word >> index & 1);
}

}  // namespace

#if defined(__i386__) || defined(__x86_64__)

namespace {

// Whether the system keeps the registers of 128 and 256 bits over a switch of threads.
bool savesWideRegisters(std::uint32_t ecx1) noexcept {
    if (!bit(ecx1, 27)) return false;
    std::uint32_t low = 0, high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (low & 6) == 6;
}

}  // namespace

ProcessorLeaves readProcessorLeaves() noexcept {
    ProcessorLeaves leaves;
    std::uint32_t a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(0, &a, &b, &c, &d)) return leaves;
    leaves.highest = a;
    leaves.isGenuineIntel =
        b == signature_INTEL_ebx && c == signature_INTEL_ecx && d == signature_INTEL_edx;
    if (__get_cpuid(1, &a, &leaves.ebx1, &leaves.ecx1, &leaves.edx1))
        leaves.savesWideRegisters = savesWideRegisters(leaves.ecx1);
    __get_cpuid_count(4, 0, &leaves.eax4, &b, &c, &d);
    __get_cpuid_count(7, 0, &a, &leaves.ebx7, &c, &d);
    return leaves;
}

#else

ProcessorLeaves readProcessorLeaves() noexcept {
    return {};
}

#endif

ProcessorFlags flagsOf(const ProcessorLeaves& leaves) noexcept {
    ProcessorFlags flags;
    flags.mmx = bit(leaves.edx1, 23);
    flags.sse = bit(leaves.edx1, 25);
    flags.sse2 = bit(leaves.edx1, 26);
    flags.sse3 = bit(leaves.ecx1, 0);
    flags.sse41 = bit(leaves.ecx1, 19);
    flags.sse42 = bit(leaves.ecx1, 20);
    if (leaves.savesWideRegisters) {
        flags.avx = bit(leaves.ecx1, 28);
        flags.avx2 = bit(leaves.ebx7, 5);
    }
    return flags;
}

int coresOf(const ProcessorLeaves& leaves) noexcept {
    if (leaves.highest < 1) return 1;
    const int logical = static_cast<int>(leaves.ebx1 >> 16 & 0xFF);
    if (!leaves.isGenuineIntel) return logical ? logical : 1;
    // An empty answer means that the leaf isn't filled in; it would count one core.
    if (leaves.highest >= 4 && leaves.eax4) return static_cast<int>(leaves.eax4 >> 26) + 1;
    const bool severalThreads = bit(leaves.edx1, 28);
    return severalThreads && logical ? logical : 1;
}

const ProcessorFlags& processorFlags() noexcept {
    static const ProcessorFlags flags = flagsOf(readProcessorLeaves());
    return flags;
}

int physicalProcessorCount() noexcept {
    static const int count = coresOf(readProcessorLeaves());
    return count;
}

}  // namespace brushwork::platform
