#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/services/log.h"
#include "image/memory/memory_manager.h"
#include "memory_rig.h"

namespace brushwork {
namespace {

std::string dumpOf(BworkMemory& memory) {
    std::string text;
    setLogSink([&text](std::string_view piece) { text += piece; });
    memory.dump();
    setLogSink({});
    return text;
}

std::string hexOf(const void* block) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%lx",
                  static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(block)));
    return text;
}

TEST(MemoryDump, OffItSaysOnlyThat) {
    BworkMemory memory(test::smallSources(50));
    EXPECT_EQ(dumpOf(memory), "\nBrushwork Memory Manager is not enabled!\n");
}

// 30 slots: eight of classes that can't be made, five of 10, ten of 5, seven of 2 megabytes.
TEST(MemoryDump, EveryKindOfLine) {
    test::resetRuntimeCounts();
    BworkMemory memory(test::smallSources(60));
    memory.enable(true);
    void* const tiny = memory.allocate(20);        // takes the block of 2
    void* const tinyK = memory.allocate(1024);     // makes the second block of 2
    void* const whole = memory.allocate(5 << 20);  // takes the block of 5
    memory.release(memory.allocate(600 << 10));    // leaves the third block of 2 unused
    std::vector<void*> pages;
    for (int i = 0; i < 161; ++i) pages.push_back(memory.allocateBig(false));
    void* const small = memory.allocateSmall(false);  // makes the fourth
    const std::string text = dumpOf(memory);
    const std::string expected =
        "\n------------------------------------------------\n"
        "Allocator count: 6.\n#: TSize-ESize-ACount\n"
        "0: 200M------\n1: 200M------\n2: 100M------\n3: 100M------\n"
        "4: 50M------\n5: 50M------\n6: 25M------\n7: 25M------\n"
        "8: 10M-65536-(Free=0)\n9: 10M------\n10: 10M------\n11: 10M------\n12: 10M------\n"
        "13: 5M-*Frozen\n14: 5M------\n15: 5M------\n16: 5M------\n17: 5M------\n"
        "18: 5M------\n19: 5M------\n20: 5M------\n21: 5M------\n22: 5M------\n"
        "23: 2M-*frozenAlloc\n24: 2M-*frozenAlloc\n25: 2M-65536-1/3226: 2M-16384-1/128"
        "27: 2M------\n28: 2M------\n29: 2M------\n"
        "---Big Allocators is 161/31(bigPage/free).\n"
        "---Small Allocators is 1/127(smallPage/free).\n"
        "---Fixed Big Free Allocators is 0.\n---Empty Big Allocators is 0.\n"
        "---------------Big Total Size = 23M, Used = 19M "
        "(82.95%)---------------------------------\n";
    EXPECT_EQ(text.substr(0, expected.size()), expected);
    const std::string tail =
        "Tiny allocator count: 8.\n#: TSize(M)-ESize-ACount\n"
        "\t->32 (x1)\n\t\t->2-32-1(0.00%)\t" +
        hexOf(tiny) +
        "\n\t->128 (x0)\n\t->512 (x0)\n"
        "\t->1K (x1)\n\t\t->2-1K-1(0.05%)\t" +
        hexOf(tinyK) +
        "\n\t->4K (x0)\n\t->16K (x0)\n"
        "\t->64K (x0)\n\t->256K (x0)\n"
        "---------------Tiny Size = 4194304B, Used = 1K(0.03%) "
        "---------------------------------\n"
        "In Memory Page Count = 0.\nSwap object count = 0.\n"
        "------------------------*****----------------------\n"
        "There are 0 fixed allocator(s).\nPageData count is 0.\n";
    ASSERT_GE(text.size(), tail.size());
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);  // pages that nothing can move
    for (void* const page : pages) memory.releaseBig(page);
    memory.releaseSmall(small);
    memory.release(whole);
    memory.release(tiny);
    memory.release(tinyK);
}

TEST(MemoryDump, FiguresOfTheCacheAndOfIdleBlocks) {
    test::resetRuntimeCounts();
    BworkMemory memory(test::smallSources(50));
    memory.enable(true);
    const test::ToyCache cache(memory);
    std::vector<void*> tiny;
    for (int i = 0; i < 5; ++i) tiny.push_back(memory.allocate(200000));
    memory.release(memory.allocate(300));
    const std::string text = dumpOf(memory);
    const std::string expected =
        "---Big Allocators is 0/0(bigPage/free).\n---Small Allocators is 0/0(smallPage/free).\n"
        "---Fixed Big Free Allocators is 0.\n---Empty Big Allocators is 3.\n"
        "---------------Big Total Size = 19M, Used = 2M "
        "(10.53%)---------------------------------\n"
        "Tiny allocator count: 8.\n#: TSize(M)-ESize-ACount\n"
        "\t->32 (x0)\n\t->128 (x0)\n"
        "\t->512 (x1)\n\t\t->2-512-0(0.00%)@(DataPtr is NULL)\n"
        "\t->1K (x0)\n\t->4K (x0)\n\t->16K (x0)\n\t->64K (x0)\n"
        "\t->256K (x1)\n\t\t->2-256K-5(62.50%)\t" +
        hexOf(tiny[0]) +
        "\n"
        "---------------Tiny Size = 2048K, Used = 1M(62.50%) "
        "---------------------------------\n"
        "In Memory Page Count = 11.\nSwap object count = 22.\n"
        "------------------------*****----------------------\n"
        "There are 0 fixed allocator(s).\nPageData count is 33.\n"
        "Succeeded to page out all blocks!\n";
    ASSERT_GE(text.size(), expected.size());
    EXPECT_EQ(text.substr(text.size() - expected.size()), expected);
    for (void* const pointer : tiny) memory.release(pointer);
}

}  // namespace
}  // namespace brushwork
