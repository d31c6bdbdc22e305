#include "foundation/services/random_source.h"

#include <atomic>
#include <chrono>

namespace brushwork {

namespace {

std::uint64_t clockSeed() noexcept {
    return static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
}

// The state steps by a fixed odd number, so that one atomic addition is all that threads share.
std::atomic<std::uint64_t>& state() noexcept {
    static std::atomic<std::uint64_t> state{clockSeed()};
    return state;
}

constexpr std::uint64_t step = 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio

// Spreads every bit of the state over all bits of the result.
constexpr std::uint64_t mixed(std::uint64_t value) noexcept {
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
    return value ^ (value >> 31);
}

}  // namespace

int randomValue() noexcept {
    const std::uint64_t value = state().fetch_add(step, std::memory_order_relaxed) + step;
    return static_cast<int>(mixed(value) >> 49);
}

void seedRandom(std::uint64_t seed) noexcept {
    state().store(seed, std::memory_order_relaxed);
}

void seedRandomFromClock() noexcept {
    seedRandom(clockSeed());
}

}  // namespace brushwork
