// The seed of a random test. A run repeats itself; BRUSHWORK_SEED gives another seed, and "random"
// one of its own to each test, which it prints.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string_view>

namespace brushwork::test {

inline std::uint32_t testSeed() {
    const char* const text = std::getenv("BRUSHWORK_SEED");
    if (!text) return 20261;
    if (std::string_view(text) == "random") return std::random_device()();
    return static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

}  // namespace brushwork::test
