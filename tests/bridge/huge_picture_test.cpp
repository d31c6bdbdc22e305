// A picture much larger than the page cache, from its file to a smart image. By hand:
//
//     BRUSHWORK_HUGE_PICTURE=huge.jpg bridge_tests --gtest_filter='HugePicture.*'
//
// BRUSHWORK_HUGE_CACHE_MIB is the cache's ceiling, 512 at first.
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bridge/bitmap.h"
#include "client_run.h"
#include "image/cache/smart_image_cache.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {
namespace {

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

long peakMebibytes(int who) {
    struct rusage usage {};
    ::getrusage(who, &usage);
    return usage.ru_maxrss / 1024;
}

// Compares the rows that this process decodes, one after the other, with the image's.
class ComparingSink final : public platform::RowSink {
  public:
    explicit ComparingSink(ilSmartImage& image) : image_(image) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        const std::size_t rowBytes = static_cast<std::size_t>(image_.sizeX()) * 4;
        row_.resize(rowBytes);
        for (const std::int32_t end = y + count; y < end; ++y, bgra += rowBytes) {
            const ilTile box = flatTile(0, image_.sizeY() - 1 - y, image_.sizeX(), 1);
            if (image_.readRegion(box, row_.data(), box) != ImageOk) return false;
            wrongRows += std::equal(row_.begin(), row_.end(), bgra) ? 0 : 1;
            ++rows;
        }
        return true;
    }

    std::int32_t rows = 0, wrongRows = 0;

  private:
    ilSmartImage& image_;
    std::vector<std::uint8_t> row_;
};

TEST(HugePicture, FitsUnderTheCeilingOfTheCache) {
    const char* const path = std::getenv("BRUSHWORK_HUGE_PICTURE");
    if (!path) GTEST_SKIP() << "BRUSHWORK_HUGE_PICTURE names no picture";
    const char* const mebibytes = std::getenv("BRUSHWORK_HUGE_CACHE_MIB");
    const std::uint64_t ceiling = std::uint64_t(mebibytes ? std::atoi(mebibytes) : 512) << 20;
    const test::HelperProgram helper;
    test::TempFolder folder;
    auto& cache = SmartImageCache::instance();
    cache.setCeiling(ceiling);

    const auto start = std::chrono::steady_clock::now();
    ImageFileParams params;
    const auto image = openFromFileThroughBridge(test::wide(path), "", &params);
    const double opening = secondsSince(start);
    ASSERT_TRUE(image);
    const auto counts = cache.counts();
    std::printf(
        "%d x %d in %.1f s; peak %ld MiB, of the helper %ld MiB; pages in memory %.0f MiB,"
        " swap %.0f MiB\n",
        params.width, params.height, opening, peakMebibytes(RUSAGE_SELF),
        peakMebibytes(RUSAGE_CHILDREN), double(counts.usedBytes) / (1 << 20),
        double(cache.swapBytes()) / (1 << 20));
    EXPECT_LE(counts.usedBytes, ceiling);
    EXPECT_EQ(counts.failedReads, 0U);

    auto bitmap = Gdiplus::Bitmap::fromFile(platform::fromUtf8(path));
    ComparingSink sink(*image);
    const auto again = std::chrono::steady_clock::now();
    ASSERT_TRUE(bitmap.readRows(platform::PixelFormat::Argb32, sink));
    EXPECT_EQ(sink.rows, params.height);
    EXPECT_EQ(sink.wrongRows, 0);
    std::printf("all rows compared in %.1f s; peak %ld MiB\n", secondsSince(again),
                peakMebibytes(RUSAGE_SELF));
    cache.setCeiling(0);
}

}  // namespace
}  // namespace brushwork
