#include "platform/processor.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fstream>
#include <string>

namespace brushwork::platform {
namespace {

TEST(Processor, FlagsStandInTheirOrder) {
    ProcessorLeaves leaves;
    leaves.savesWideRegisters = true;
    const auto set = [&](int flag) {
        constexpr std::array<std::uint32_t, 8> bits = {23, 25, 26, 0, 19, 20, 28, 5};
        (flag < 3   ? leaves.edx1
         : flag < 7 ? leaves.ecx1
                    : leaves.ebx7) |= 1U << bits[static_cast<std::size_t>(flag)];
    };
    for (int flag = 0; flag < 8; ++flag) {
        leaves.edx1 = leaves.ecx1 = leaves.ebx7 = 0;
        set(flag);
        const ProcessorFlags flags = flagsOf(leaves);
        std::array<std::uint8_t, 9> bytes, expected{};
        std::memcpy(bytes.data(), &flags, bytes.size());
        expected[static_cast<std::size_t>(flag)] = 1;
        EXPECT_EQ(bytes, expected) << flag;
    }
    leaves.savesWideRegisters = false;
    set(6);
    EXPECT_EQ(flagsOf(leaves), ProcessorFlags{}) << "registers that the system doesn't save";
}

TEST(Processor, CountsCoresByTheMaker) {
    ProcessorLeaves leaves;
    EXPECT_EQ(coresOf(leaves), 1) << "no identification";
    leaves.highest = 7;
    leaves.eax4 = 5U << 26;
    EXPECT_EQ(coresOf(leaves), 1) << "nothing told";
    leaves.ebx1 = 16U << 16;
    EXPECT_EQ(coresOf(leaves), 16) << "leaf 1";
    leaves.isGenuineIntel = true;
    EXPECT_EQ(coresOf(leaves), 6) << "leaf 4";
    leaves.highest = 3;
    EXPECT_EQ(coresOf(leaves), 1) << "no leaf 4, one thread";
    leaves.edx1 = 1U << 28;
    EXPECT_EQ(coresOf(leaves), 16) << "no leaf 4, several threads";
}

TEST(Processor, AgreesWithTheKernel) {
    std::ifstream file("/proc/cpuinfo");
    std::string line;
    while (std::getline(file, line) && !line.starts_with("flags")) {
    }
    if (line.empty()) GTEST_SKIP() << "the kernel tells no flags";
    line += ' ';
    const auto has = [&](const char* flag) {
        return static_cast<std::uint8_t>(line.find(std::string(" ") + flag + " ") != line.npos);
    };
    ProcessorFlags expected;
    expected.mmx = has("mmx");
    expected.sse = has("sse");
    expected.sse2 = has("sse2");
    expected.sse3 = has("pni");
    expected.sse41 = has("sse4_1");
    expected.sse42 = has("sse4_2");
    expected.avx = has("avx");
    expected.avx2 = has("avx2");
    EXPECT_EQ(processorFlags(), expected) << line;
    EXPECT_GE(logicalProcessorCount(), 1);
    EXPECT_GE(physicalProcessorCount(), 1);
}

}  // namespace
}  // namespace brushwork::platform
