#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "image/cache/smart_image_cache.h"
#include "image/memory/image_health.h"
#include "image/memory/image_lock.h"
#include "image/memory/memory_manager.h"
#include "image/smart/smart_oracle.h"
#include "platform/sanitizers.h"

namespace brushwork::test {
namespace {

#if defined(NDEBUG)
constexpr bool isSlow = platform::sanitized;
#else
constexpr bool isSlow = true;
#endif
constexpr std::uint64_t defaultOperations = isSlow ? 6000 : 60000;
constexpr std::uint64_t operationsEach = 3000;

std::uint64_t environment(const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 10) : otherwise;
}

// BRUSHWORK_ORACLE_OPERATIONS: how many in all. BRUSHWORK_ORACLE_SEED: where the seeds begin; that
// of a failure alone repeats it in the first episode.
void runOracle(std::uint64_t seeds) {
    clearImageFailure();
    const std::uint64_t all = environment("BRUSHWORK_ORACLE_OPERATIONS", defaultOperations);
    const std::uint64_t first = environment("BRUSHWORK_ORACLE_SEED", seeds);
    const std::uint32_t pagesBefore = smartPageCount();
    const std::uint64_t writesBefore = SmartImageCache::instance().counts().swapWrites;
    std::uint64_t seed = first;
    for (std::uint64_t done = 0; done < all; done += operationsEach, ++seed) {
        SmartOracle oracle(seed);
        const std::string fault = oracle.run(operationsEach);
        ASSERT_EQ(fault, "");
        ASSERT_EQ(imageFailure(), 0) << "seed " << seed;
        ASSERT_EQ(smartPageCount(), pagesBefore) << "seed " << seed;
        ASSERT_EQ(SmartImageCache::instance().counts().usedBytes, 0u) << "seed " << seed;
    }
    // Pages did stream through the swap file.
    EXPECT_GT(SmartImageCache::instance().counts().swapWrites, writesBefore);
    testing::Test::RecordProperty("seeds",
                                  std::to_string(first) + " to " + std::to_string(seed - 1));
    std::printf("  %llu operations, seeds %llu to %llu, %llu pages swapped out\n",
                static_cast<unsigned long long>(all), static_cast<unsigned long long>(first),
                static_cast<unsigned long long>(seed - 1),
                static_cast<unsigned long long>(SmartImageCache::instance().counts().swapWrites -
                                                writesBefore));
}

TEST(SmartOracle, AgreesWithPlainPictures) {
    runOracle(1);
}

TEST(SmartOracle, AgreesUnderTheMemoryManager) {
    const bool engaged = imageLockEngaged();
    engageImageLock(true);
    BworkMemory::instance().enable(true);
    runOracle(1000001);
    BworkMemory::instance().enable(false);
    engageImageLock(engaged);
}

}  // namespace
}  // namespace brushwork::test
