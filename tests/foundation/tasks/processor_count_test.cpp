#include "foundation/tasks/processor_count.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/environment.h"
#include "platform/processor.h"

namespace brushwork {
namespace {

TEST(ProcessorCount, AVariableCanOnlyLowerACount) {
    EXPECT_EQ(loweredCount(8, std::nullopt), 8);
    for (const char* lower : {"1", "7", "007"}) EXPECT_EQ(loweredCount(8, lower), std::stoi(lower));
    for (const char* other : {"0", "8", "9", "64", "-1", "", " 3", "3 ", "3.5", "two", "0x2",
                              "4294967297", "99999999999999999999"})
        EXPECT_EQ(loweredCount(8, other), 8) << other;
    EXPECT_EQ(loweredCount(1, "1"), 1);
}

// Each variable reaches its own count, and is read once.
TEST(ProcessorCount, EachCountHasItsVariable) {
    const int logical = platform::logicalProcessorCount();
    const int physical = platform::physicalProcessorCount();
    const auto counts = [](const char* cpus, const char* physicalCpus) {
        platform::setEnvironmentVariable("ZN_NUM_CPUS", cpus);
        platform::setEnvironmentVariable("ZN_NUM_PHYS_CPUS", physicalCpus);
        resetProcessorCounts();
        return std::pair(processorCount(), physicalProcessorCount());
    };
    EXPECT_EQ(counts("1", "none"), std::pair(1, physical));
    platform::setEnvironmentVariable("ZN_NUM_CPUS", "none");
    EXPECT_EQ(processorCount(), 1);
    EXPECT_EQ(counts("0", "1"), std::pair(logical, 1));
    const std::string above = std::to_string(logical + 1);
    EXPECT_EQ(counts(above.c_str(), "1000000"), std::pair(logical, physical));
    platform::unsetEnvironmentVariable("ZN_NUM_CPUS");
    platform::unsetEnvironmentVariable("ZN_NUM_PHYS_CPUS");
    resetProcessorCounts();
    EXPECT_EQ(processorCount(), logical);
}

}  // namespace
}  // namespace brushwork
