#include "image/cache/memory_budget.h"

#include <algorithm>

#include "platform/memory_figures.h"

namespace brushwork {
namespace {

constexpr std::uint64_t physicalIfUnknown = 2048;

// What a machine below so many megabytes keeps for everything else.
struct Kept {
    std::uint64_t below, megabytes;
};
constexpr Kept keptTable[] = {{96, 48}, {128, 64}, {192, 80}, {256, 96}, {384, 128}, {768, 192}};
constexpr std::uint64_t keptByLarge = 256;
constexpr std::uint64_t smallMachine = 64, smallBudget = 16, largestBudget = 1536;

}  // namespace

std::uint64_t physicalMegabytes() {
    const std::uint64_t kilobytes = platform::memoryFigures().physical;
    return kilobytes == 0 ? physicalIfUnknown : kilobytes >> 10;
}

std::uint64_t availableMegabytes() {
    return platform::memoryFigures().available >> 10;
}

std::uint64_t budgetMegabytes(std::uint64_t physical) {
    if (physical < smallMachine) return smallBudget;
    std::uint64_t kept = keptByLarge;
    for (const Kept& row : keptTable) {
        if (physical >= row.below) continue;
        kept = row.megabytes;
        break;
    }
    return std::clamp(physical - kept, smallBudget, largestBudget);
}

std::uint64_t firstCacheBytes(std::uint64_t budget) {
    return std::min(budget * mebibyte, mostCacheBytes);
}

std::uint64_t boundedCacheBytes(std::uint64_t bytes, std::uint64_t budget) {
    return std::min(std::max(std::min(bytes, budget * mebibyte), leastCacheBytes), mostCacheBytes);
}

}  // namespace brushwork
