// The colour adjustments on the photographs of the corpus, opaque and through a soft vignette,
// against the same formulas in double. BRUSHWORK_CORPUS names its directory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "adjust_oracle.h"
#include "image/filter/color_convert.h"
#include "image/filter/il_color_adjust_img.h"
#include "platform/imaging.h"

namespace brushwork {
namespace {

struct Photo {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint32_t> words;
};

class PhotoSink final : public platform::RowSink {
  public:
    explicit PhotoSink(Photo& photo) : photo_(photo) {}
    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        const auto width = static_cast<std::size_t>(photo_.width);
        std::uint32_t* out = photo_.words.data() + static_cast<std::size_t>(y) * width;
        for (std::size_t n = 0; n < static_cast<std::size_t>(count) * width; ++n, bgra += 4)
            out[n] = std::uint32_t{bgra[2]} | std::uint32_t{bgra[1]} << 8 |
                     std::uint32_t{bgra[0]} << 16 | 0xFF000000u;
        return true;
    }

  private:
    Photo& photo_;
};

void addVignette(Photo& photo) {
    for (std::size_t n = 0; n < photo.words.size(); ++n) {
        const auto x = static_cast<std::int32_t>(n % static_cast<std::size_t>(photo.width));
        const auto alpha = static_cast<std::uint32_t>(std::min(255, x));
        std::uint32_t word = alpha << 24;
        for (unsigned shift = 0; shift < 24; shift += 8)
            word |= (photo.words[n] >> shift & 0xFF) * alpha / 255 << shift;
        photo.words[n] = word;
    }
}

// Empty if it can't be read.
Photo readPhoto(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file),
                                          std::istreambuf_iterator<char>()};
    platform::ImagingStatus status{};
    const auto picture = platform::imagingService().openMemory(bytes, status);
    Photo photo;
    if (!picture) return photo;
    photo.width = picture->width();
    photo.height = picture->height();
    photo.words.resize(static_cast<std::size_t>(photo.width) *
                       static_cast<std::size_t>(photo.height));
    PhotoSink sink(photo);
    if (picture->readRows(platform::PixelFormat::Argb32, sink) != platform::ImagingStatus::Ok)
        photo.words.clear();
    return photo;
}

void expectFormula(const std::string& name, const Photo& photo, const ColorAdjustParm& parm) {
    std::vector<std::uint32_t> words = photo.words;
    const Ref<ilColorAdjustImg> image(new ilColorAdjustImg(words.data(), photo.width, photo.height,
                                                           1, 4, TypeUChar, OrderInterleaved));
    Ref<ToneAnalysis> slot;
    rememberHue(0.0f);
    if (!image->apply(&parm, slot)) return;
    test::AdjustOracle oracle(parm, 0.0);
    std::size_t unsure = 0;
    for (std::size_t n = 0; n < words.size(); ++n) {
        bool jump = false;
        ASSERT_TRUE(oracle.agrees(photo.words[n], words[n], jump) || jump)
            << name << ", kind " << parm.kind << ", pixel " << n << std::hex << ": "
            << photo.words[n] << " became " << words[n];
        unsure += jump;
    }
    EXPECT_LT(unsure, words.size() / 20) << name << ", kind " << parm.kind;
}

// The photographs of the corpus, each also with alpha rising from its left edge. False without it.
template <class Work>
bool forPhotos(const Work& work) {
    const char* corpus = std::getenv("BRUSHWORK_CORPUS");
    if (!corpus) return false;
    for (const char* file : {"chelsea.png", "rocket.jpg", "camera.png"}) {
        Photo photo = readPhoto(std::filesystem::path(corpus) / "images" / "photos" / file);
        EXPECT_FALSE(photo.words.empty()) << file;
        work(file, photo);
        addVignette(photo);
        work(file, photo);
    }
    return true;
}

TEST(AdjustPhotos, EveryKindFollowsItsFormula) {
    std::mt19937 random(2);
    const bool found = forPhotos([&](const std::string& file, const Photo& photo) {
        for (std::int32_t kind = 0; kind <= 6; ++kind)
            for (int round = 0; round < 2; ++round)
                expectFormula(file, photo, test::randomParm(kind, random));
    });
    if (!found) GTEST_SKIP() << "no BRUSHWORK_CORPUS";
}

TEST(AdjustPhotos, NeutralNumbersAndTwoInversionsLeaveEveryByte) {
    const bool found = forPhotos([&](const std::string& file, const Photo& photo) {
        for (std::int32_t kind = 0; kind <= AdjustNone; ++kind) {
            if (kind == AdjustShowRanges) continue;
            ColorAdjustParm parm;
            parm.reset(kind);
            parm.hue = {0.0f, 0.0f};
            // Every hue, saturation and lightness onto itself.
            parm.hueRange = parm.hueTarget = parm.satRange = parm.satTarget = parm.lightRange =
                parm.lightTarget = {0.0f, 0.3f, 0.7f, 1.0f};
            std::vector<std::uint32_t> words = photo.words;
            const Ref<ilColorAdjustImg> image(new ilColorAdjustImg(
                words.data(), photo.width, photo.height, 1, 4, TypeUChar, OrderInterleaved));
            Ref<ToneAnalysis> slot;
            image->apply(&parm, slot);
            if (kind == AdjustInvert) {
                EXPECT_NE(words, photo.words) << file;
                image->apply(&parm, slot);
            }
            EXPECT_EQ(words, photo.words) << file << ", kind " << kind;
        }
    });
    if (!found) GTEST_SKIP() << "no BRUSHWORK_CORPUS";
}

}  // namespace
}  // namespace brushwork
