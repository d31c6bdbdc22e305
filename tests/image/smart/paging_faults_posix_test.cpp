// Painting on while the disk is full, broken or not there: nothing that was painted gets lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "image/cache/cache_rig.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/tiny_disk.h"

namespace brushwork {
namespace {

using test::CacheRig;
using test::Manager;
using test::TinyDisk;
using Clock = std::chrono::steady_clock;

constexpr char writeText[] =
    "An error has been encountered while writing to\nan Image Swap File. The error is:\n";
constexpr char readText[] =
    "An error has been encountered while reading from\nan Image Swap File. The error is:\n";
constexpr std::uint64_t bigBytes = 65536;
constexpr int pageCount = 60;

class PagingFaults : public testing::TestWithParam<Manager> {
  protected:
    PagingFaults() {
        rig_.cache.setCeiling(8 * bigBytes);
        layer_ = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
    }
    ~PagingFaults() override {
        layer_.reset();
        rig_.cache.setSwapQuestion({});
        // On the disk of the test, which goes before the rig does.
        rig_.cache.bigSwap().close();
    }

    static ilTile place(int page) { return flatTile(page * pageSide, 0, pageSide, pageSide); }
    // Noise, which packs to nothing smaller.
    static std::vector<std::uint8_t> pixels(int page) {
        return CacheRig::pixels(4, static_cast<std::uint32_t>(page) * 3);
    }
    void paint(int page) {
        ASSERT_EQ(layer_->writeRegion(place(page), pixels(page).data(), place(page)), ImageOk);
    }
    void paintAll() {
        for (int page = 0; page < pageCount; ++page) paint(page);
    }
    [[nodiscard]] bool isWhole(int page) {
        std::vector<std::uint8_t> bytes(bigBytes);
        return layer_->readRegion(place(page), bytes.data(), place(page)) == ImageOk &&
               bytes == pixels(page);
    }
    [[nodiscard]] int wholePages() {
        int whole = 0;
        for (int page = 0; page < pageCount; ++page) whole += isWhole(page);
        return whole;
    }
    [[nodiscard]] std::size_t told(std::string_view start) const {
        return static_cast<std::size_t>(
            std::count_if(rig_.texts.begin(), rig_.texts.end(), [start](const std::string& text) {
                return text.compare(0, start.size(), start) == 0;
            }));
    }
    [[nodiscard]] SmartImageCache::Counts counts() const { return rig_.cache.counts(); }

    CacheRig rig_{GetParam()};
    Ref<ilSmartImage> layer_;
};

TEST_P(PagingFaults, AFullDiskHoldsPaintingUpUntilThereIsRoom) {
    TinyDisk disk(rig_.root / "disk", 20 * bigBytes, 80 * bigBytes);
    rig_.cache.bigSwap().setDirectories([&] { return disk.directories(); });
    // Somebody reads the messages and frees the disk after the sixth.
    std::vector<Clock::time_point> times;
    setLogSink([&](std::string_view text) {
        rig_.texts.emplace_back(text);
        times.push_back(Clock::now());
        if (times.size() == 6) disk.makeRoom();
    });
    paintAll();
    EXPECT_EQ(times.size(), 6U);
    EXPECT_EQ(told(writeText), 6U);
    EXPECT_EQ(counts().failedWrites, 6U);
    // 1, 2, 4 ... milliseconds lie between the tries.
    for (std::size_t n = 1; n < times.size(); ++n)
        EXPECT_GE(times[n] - times[n - 1], std::chrono::milliseconds(1 << (n - 1))) << n;
    EXPECT_LE(counts().usedBytes, 8 * bigBytes);
    EXPECT_GE(counts().swapped, pageCount - 8);
    EXPECT_EQ(wholePages(), pageCount);
    EXPECT_EQ(imageFailure(), 0);
    layer_.reset();
    rig_.cache.bigSwap().close();
}

TEST_P(PagingFaults, WhoEndsTheWaitKeepsThePagesInMemory) {
    TinyDisk disk(rig_.root / "disk", 20 * bigBytes, 80 * bigBytes);
    rig_.cache.bigSwap().setDirectories([&] { return disk.directories(); });
    std::vector<SwapTrouble> asked;
    rig_.cache.setSwapQuestion([&](const SwapTrouble& trouble) {
        asked.push_back(trouble);
        return trouble.tries < 14 ? SwapAnswer::Retry : SwapAnswer::GiveUp;
    });
    paintAll();
    ASSERT_GE(asked.size(), 14U);
    for (std::uint32_t n = 0; n < 14; ++n) {
        EXPECT_EQ(asked[n].tries, n + 1);
        EXPECT_EQ(asked[n].wait.count(), std::min(1000, 1 << n));
    }
    EXPECT_GT(counts().usedBytes, 8 * bigBytes);
    EXPECT_EQ(counts().failedWrites, asked.size());
    EXPECT_EQ(told(writeText), asked.size());
    EXPECT_EQ(imageFailure(), 0);
    EXPECT_EQ(wholePages(), pageCount);
    // Room again: what stayed leaves with the next page that wants memory.
    disk.makeRoom();
    const std::size_t before = asked.size();
    layer_->setPixel(pageCount * pageSide, 0, 1);
    EXPECT_LE(counts().usedBytes, 8 * bigBytes);
    EXPECT_EQ(asked.size(), before);
    EXPECT_EQ(wholePages(), pageCount);
    layer_.reset();
    rig_.cache.bigSwap().close();
}

TEST_P(PagingFaults, ACutSwapFileCostsOnlyWhatWasCutOff) {
    paintAll();
    // All go out now: a page written later would make the file long again, with a hole in it.
    rig_.cache.setCeiling(1);
    ASSERT_EQ(counts().swapped, pageCount);
    rig_.cache.setCeiling(8 * bigBytes);
    SwapFile& swap = rig_.cache.bigSwap();
    const std::uint64_t kept = swap.endOfFile() / 2 + 1000;  // inside a page
    {
        platform::PositionedFile file;
        ASSERT_TRUE(file.open(swap.name(), platform::PositionedFile::Mode::ReadWrite));
        ASSERT_TRUE(file.resize(kept));
    }
    std::vector<int> cut;
    for (int page = 0; page < pageCount; ++page) {
        const SmartPage& record = **layer_->pages().pageRef(page * pageSide, 0, false);
        if (record.swapRecord && record.swapRecord->offset + record.swapRecord->storedSize > kept)
            cut.push_back(page);
    }
    ASSERT_GT(cut.size(), 10U);
    for (int page = 0; page < pageCount; ++page) {
        const bool lost = std::find(cut.begin(), cut.end(), page) != cut.end();
        EXPECT_EQ(isWhole(page), !lost) << page;
    }
    EXPECT_EQ(counts().failedReads, cut.size());
    EXPECT_EQ(told(readText), 10 * cut.size());
    EXPECT_EQ(imageFailure(), 0);
    // The file grows again under what is painted now.
    paintAll();
    EXPECT_EQ(wholePages(), pageCount);
}

TEST_P(PagingFaults, TheLastDirectoryThatTakesAFileIsTaken) {
    std::filesystem::create_directories(rig_.root / "last");
    platform::PositionedFile file;
    ASSERT_TRUE(
        file.open((rig_.root / "file").u16string(), platform::PositionedFile::Mode::CreateNew));
    const auto in = [&](const char* name) { return (rig_.root / name).u16string(); };
    // Nobody can make a file below a file, whatever he may otherwise.
    rig_.cache.bigSwap().setDirectories([&] {
        return SwapDirectories{in("file/first"), in("not there"), in("last")};
    });
    paintAll();
    EXPECT_TRUE(rig_.texts.empty());
    const std::u16string start = in("last") + u"/SIDTMP";
    EXPECT_EQ(rig_.cache.bigSwap().name().substr(0, start.size()), start);
    EXPECT_EQ(wholePages(), pageCount);
}

TEST_P(PagingFaults, WithoutAnyDirectoryPagesStayUntilThereIsOne) {
    const auto in = [&](const char* name) { return (rig_.root / name).u16string(); };
    rig_.cache.bigSwap().setDirectories([&] {
        return SwapDirectories{in("not there"), in("nor there"), in("late")};
    });
    std::size_t asked = 0;
    bool gives = true;
    rig_.cache.setSwapQuestion([&](const SwapTrouble& trouble) {
        ++asked;
        if (gives) return SwapAnswer::GiveUp;
        if (trouble.tries == 3) std::filesystem::create_directories(rig_.root / "late");
        return SwapAnswer::Retry;
    });
    paintAll();
    EXPECT_EQ(counts().usedBytes, pageCount * bigBytes);
    EXPECT_EQ(counts().swapped, 0);
    EXPECT_EQ(told("SwapFile::Open: (" + (rig_.root / "late").string()), asked);
    EXPECT_EQ(wholePages(), pageCount);
    gives = false;
    asked = 0;
    layer_->setPixel(pageCount * pageSide, 0, 1);
    EXPECT_EQ(asked, 3U);
    EXPECT_LE(counts().usedBytes, 8 * bigBytes);
    EXPECT_EQ(wholePages(), pageCount);
}

INSTANTIATE_TEST_SUITE_P(Managers, PagingFaults, testing::Values(Manager::Off, Manager::On),
                         [](const auto& each) {
                             return each.param == Manager::On ? "ManagerOn" : "ManagerOff";
                         });

}  // namespace
}  // namespace brushwork
