#include "fill/fill_noise.h"

#include <atomic>

namespace brushwork {
namespace {

std::atomic<std::uint32_t> noiseA{0}, noiseB{0};
std::atomic<std::uint32_t> spreadCounter{0};

}  // namespace

FillNoise FillNoise::current() {
    FillNoise noise;
    noise.a_ = noiseA.load(std::memory_order_relaxed);
    noise.b_ = noiseB.load(std::memory_order_relaxed);
    return noise;
}

void FillNoise::makeCurrent() const {
    noiseA.store(a_, std::memory_order_relaxed);
    noiseB.store(b_, std::memory_order_relaxed);
}

std::uint8_t nextSpreadNumber() {
    std::uint32_t bits = spreadCounter.fetch_add(1, std::memory_order_relaxed) + 1;
    bits = (bits & 0x55) << 1 | (bits >> 1 & 0x55);
    bits = (bits & 0x33) << 2 | (bits >> 2 & 0x33);
    return static_cast<std::uint8_t>((bits & 0x0F) << 4 | (bits >> 4 & 0x0F));
}

void restartSpreadNumbers() {
    spreadCounter.store(0, std::memory_order_relaxed);
}

}  // namespace brushwork
