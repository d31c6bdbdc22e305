// Every page and every record that an operation asks for refused once, by turns, and all of them
// together: what answers success did all of it, what fails leaves each pixel old or new, and
// nothing is lost once there is memory again.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "image/cache/cache_rig.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {
namespace {

using test::CacheRig;
using test::Manager;

enum class Refusal { One, AllFromThereOn };

struct Gate {
    int asked = 0;
    int refuseAt = 0;  // 0: none
    Refusal refusal = Refusal::One;
    bool refused = false;
};

Gate& gate() {
    static Gate instance;
    return instance;
}

bool refuse() noexcept {
    Gate& g = gate();
    ++g.asked;
    if (g.refuseAt == 0 || g.asked < g.refuseAt) return false;
    if (g.refusal == Refusal::One && g.asked > g.refuseAt) return false;
    g.refused = true;
    return true;
}

const ilTile window = flatTile(-128, -128, 3 * pageSide, 3 * pageSide);

// A smart image and what it has to show, in the window.
struct Twin {
    Ref<ilSmartImage> real;
    std::vector<std::uint32_t> picture = std::vector<std::uint32_t>(9 * pagePixels);

    static std::size_t at(std::int32_t x, std::int32_t y) {
        return static_cast<std::size_t>((y - window.y) * window.nx + x - window.x);
    }
    void fill(const ilTile& box, std::uint32_t value) {
        const ilTile inside = intersection(box, window);
        for (std::int32_t y = inside.y; y < inside.endY(); ++y)
            for (std::int32_t x = inside.x; x < inside.endX(); ++x) picture[at(x, y)] = value;
    }
};

class Script {
  public:
    Script(std::uint8_t channels, int refuseAt, Refusal refusal) : channels_(channels) {
        gate() = {0, refuseAt, refusal, false};
        setAllocationRefusal(refuse);
    }
    ~Script() { setAllocationRefusal(nullptr); }

    void run();
    [[nodiscard]] bool refusedAny() const { return gate().refused; }

  private:
    using Operation = std::function<std::int32_t()>;
    using Change = std::function<void(std::vector<std::uint32_t>&)>;

    [[nodiscard]] std::uint32_t value() {
        const auto drawn = static_cast<std::uint32_t>(random_());
        return channels_ == 1 ? drawn & 255 : drawn;
    }
    [[nodiscard]] ilPixel pixel(std::uint32_t value) const {
        return ilPixel(TypeUChar, static_cast<std::int32_t>(channels_), &value);
    }
    [[nodiscard]] std::vector<std::uint8_t> packed(const std::vector<std::uint32_t>& words) const {
        std::vector<std::uint8_t> bytes;
        for (const std::uint32_t word : words)
            for (std::size_t n = 0; n < channels_; ++n)
                bytes.push_back(static_cast<std::uint8_t>(word >> 8 * n));
        return bytes;
    }
    // Without refusals: as a reader sees it.
    [[nodiscard]] std::vector<std::uint32_t> shown(ilSmartImage& image) const {
        std::vector<std::uint8_t> bytes(9 * pagePixels * std::size_t{channels_});
        EXPECT_EQ(image.readRegion(window, bytes.data(), window), ImageOk);
        std::vector<std::uint32_t> words(9 * pagePixels);
        for (std::size_t i = 0; i < words.size(); ++i)
            for (std::size_t n = 0; n < channels_; ++n)
                words[i] |= std::uint32_t{bytes[i * channels_ + n]} << 8 * n;
        return words;
    }
    // Memory returns for the rest, if it was short.
    bool endRefusals() {
        if (!gate().refused || gate().refuseAt == 0) return false;
        gate().refuseAt = 0;
        clearImageFailure();
        return true;
    }

    // What may show halfway if it fails, must show if it answers success. The answer of an
    // operation that has none is taken for a failure if anything was refused.
    void apply(const char* name, Twin& twin, const Operation& operation, const Change& change) {
        SCOPED_TRACE(name);
        std::vector<std::uint32_t> wanted = twin.picture;
        change(wanted);
        const std::int32_t result = operation();
        const bool wasShort = endRefusals();
        EXPECT_TRUE(wasShort || result == ImageOk) << result;
        if (result == ImageOk) {
            twin.picture = wanted;
        } else {
            const std::vector<std::uint32_t> now = shown(*twin.real);
            std::size_t strange = 0;
            for (std::size_t i = 0; i < now.size(); ++i)
                strange += now[i] != twin.picture[i] && now[i] != wanted[i];
            EXPECT_EQ(strange, 0U) << "pixels neither old nor new";
            twin.picture = now;
        }
        if (wasShort) verify();
    }
    std::int32_t unlessShort(std::int32_t result = ImageOk) const {
        return gate().refused && gate().refuseAt != 0 ? std::int32_t{ImageUnusable} : result;
    }
    void verify() {
        for (const Twin* twin : {&a_, &b_, &c_, &d_, &over_})
            EXPECT_TRUE(!twin->real || shown(*twin->real) == twin->picture)
                << (twin == &a_) << (twin == &b_) << (twin == &c_) << (twin == &d_);
        EXPECT_TRUE(SmartImageCache::instance().isConsistent());
    }

    void write(Twin& twin, const ilTile& box) {
        std::vector<std::uint32_t> words(static_cast<std::size_t>(box.nx * box.ny));
        for (std::uint32_t& word : words) word = value();
        const std::vector<std::uint8_t> bytes = packed(words);
        apply(
            "write", twin, [&] { return twin.real->writeRegion(box, bytes.data(), box); },
            [&](auto& picture) {
                for (std::int32_t y = 0; y < box.ny; ++y)
                    for (std::int32_t x = 0; x < box.nx; ++x)
                        picture[Twin::at(box.x + x, box.y + y)] =
                            words[static_cast<std::size_t>(y * box.nx + x)];
            });
    }
    void fill(Twin& twin, const ilTile& box) {
        const std::uint32_t word = value();
        apply(
            "fill", twin, [&] { return twin.real->fillRegion(box, pixel(word)); },
            [&](auto& picture) {
                Twin copy{{}, picture};
                copy.fill(box, word);
                picture = copy.picture;
            });
    }
    // Both boxes lie in the window.
    void copy(Twin& to, const Twin& from, const ilTile& box, std::int32_t x, std::int32_t y) {
        apply(
            "copy", to,
            [&] {
                return to.real->copyRegion(box, *from.real, x, y, 0, nullptr,
                                           CopyDirection::FromOther);
            },
            [&](auto& picture) {
                for (std::int32_t v = 0; v < box.ny; ++v)
                    for (std::int32_t u = 0; u < box.nx; ++u)
                        picture[Twin::at(box.x + u, box.y + v)] =
                            from.picture[Twin::at(x + u, y + v)];
            });
    }
    void set(Twin& twin, std::int32_t x, std::int32_t y) {
        const std::uint32_t word = value();
        apply(
            "set", twin, [&] { return twin.real->setPixel(x, y, word), unlessShort(); },
            [&](auto& picture) { picture[Twin::at(x, y)] = word; });
    }
    void read(Twin& twin) {
        SCOPED_TRACE("read");
        std::vector<std::uint8_t> bytes(9 * pagePixels * std::size_t{channels_});
        const std::int32_t result = twin.real->readRegion(window, bytes.data(), window);
        const bool wasShort = endRefusals();
        EXPECT_TRUE(wasShort || result == ImageOk) << result;
        EXPECT_TRUE(result != ImageOk || bytes == packed(twin.picture));
        if (wasShort) verify();
    }
    void writeThroughLocks(Twin& twin) {
        SCOPED_TRACE("locks");
        std::array<PageLockRequest, 4> requests{{{5, 5}, {-5, 5}, {130, 130}, {6, 6}}};
        const std::int32_t result = twin.real->lockPages(requests, LockWrite);
        for (const PageLockRequest& request : requests) {
            EXPECT_EQ(request.page != nullptr, request.status == ImageOk);
            if (!request.page) continue;
            const std::uint32_t word = value();
            const std::size_t at = Twin::at(request.x, request.y);
            const auto offset =
                static_cast<std::size_t>((request.y & 127) * pageSide + (request.x & 127)) *
                channels_;
            std::memcpy(request.page->data() + offset, &word, channels_);
            twin.picture[at] = word;
        }
        twin.real->unlockPages(requests);
        const bool wasShort = endRefusals();
        EXPECT_TRUE(wasShort || result == ImageOk) << result;
        if (wasShort) verify();
    }
    void lockForReading(Twin& twin) {
        SCOPED_TRACE("read locks");
        std::array<PageLockRequest, 9> requests;
        for (std::int32_t n = 0; n < 9; ++n)
            requests[static_cast<std::size_t>(n)] = {n % 3 * pageSide - 100, n / 3 * pageSide - 90};
        const std::int32_t result = twin.real->lockPages(requests, LockRead);
        for (const PageLockRequest& request : requests) {
            if (!request.page) continue;
            const auto offset =
                static_cast<std::size_t>((request.y & 127) * pageSide + (request.x & 127)) *
                channels_;
            std::uint32_t word = 0;
            std::memcpy(&word, request.page->data() + offset, channels_);
            EXPECT_EQ(word, twin.picture[Twin::at(request.x, request.y)]);
        }
        twin.real->unlockPages(requests);
        const bool wasShort = endRefusals();
        EXPECT_TRUE(wasShort || result == ImageOk) << result;
        if (wasShort) verify();
    }
    void make(Twin& twin, std::uint32_t fill) {
        twin.real = Ref<ilSmartImage>(new ilSmartImage(pixel(fill)));
        twin.fill(window, channels_ == 1 ? fill & 255 : fill);
        if (endRefusals()) verify();
    }
    void makeChild(Twin& child, const Twin& parent) {
        child.real = Ref<ilSmartImage>(new ilSmartImage(parent.real.get()));
        child.picture = parent.picture;
        if (endRefusals()) verify();
    }
    void makeOverMemory() {
        const Ref<ilSPMemoryImg> memory(
            new ilSPMemoryImg(256, 256, static_cast<std::int32_t>(channels_)));
        over_.fill(window, 0);
        std::vector<std::uint32_t> words(256 * 256);
        for (std::uint32_t& word : words) word = value();
        const std::vector<std::uint8_t> bytes = packed(words);
        const ilTile box = flatTile(0, 0, 256, 256);
        ASSERT_EQ(memory->writeRegion(box, bytes.data(), box), ImageOk);
        for (std::int32_t y = 0; y < 256; ++y)
            for (std::int32_t x = 0; x < 256; ++x)
                over_.picture[Twin::at(x, y)] = words[static_cast<std::size_t>(y * 256 + x)];
        over_.real = Ref<ilSmartImage>(new ilSmartImage(memory.get()));
        if (endRefusals()) verify();
    }
    void push(Twin& child, Twin& parent) {
        apply(
            "push", parent, [&] { return child.real->pushToSource(); },
            [&](auto& picture) { picture = child.picture; });
        // What a failed push left undone the next one does.
        apply(
            "push again", parent, [&] { return child.real->pushToSource(); },
            [&](auto& picture) { picture = child.picture; });
    }
    void takeClone(Twin& copy, Twin& of) {
        copy.real = of.real->clone();
        copy.picture = of.picture;
        const bool wasShort = endRefusals();
        EXPECT_TRUE(copy.real || wasShort);
        if (!copy.real) copy.real = of.real->clone();
        if (wasShort) verify();
    }
    void end(Twin& twin) {
        twin.real.reset();
        if (endRefusals()) verify();
    }

    std::size_t channels_;
    std::mt19937 random_{7};
    Twin a_, b_, c_, d_, over_;
};

void Script::run() {
    make(a_, 0x01020304);
    write(a_, window);
    fill(a_, flatTile(-128, 0, 128, 128));
    fill(a_, flatTile(10, -40, 100, 130));
    write(a_, flatTile(-20, 100, 90, 50));
    make(b_, 0);
    copy(b_, a_, flatTile(0, -128, 256, 256), -128, 0);
    copy(b_, a_, flatTile(-128, -128, 300, 140), -100, -5);
    makeChild(c_, a_);
    write(c_, flatTile(120, 120, 20, 20));
    set(c_, -3, -3);
    fill(c_, flatTile(0, 0, 128, 128));
    writeThroughLocks(c_);
    lockForReading(b_);
    read(c_);
    push(c_, a_);
    end(c_);
    makeChild(c_, a_);
    write(c_, flatTile(-60, 0, 30, 30));
    takeClone(d_, a_);
    end(a_);
    read(c_);
    makeOverMemory();
    lockForReading(over_);
    set(over_, 200, 200);
    copy(d_, over_, flatTile(0, 0, 128, 256), 0, 0);
    apply(
        "materialize", d_, [&] { return d_.real->materialize(nullptr, true), unlessShort(); },
        [](auto&) {});
    apply(
        "shrink", b_, [&] { return b_.real->shrinkBounds(), unlessShort(); }, [](auto&) {});
    read(d_);
    verify();
}

struct Shape {
    Manager manager;
    std::uint8_t channels;
    Refusal refusal;
    std::uint64_t ceiling;  // pages; 0: none, and so more buffers are asked for
};

class ShortMemory : public testing::TestWithParam<Shape> {};

TEST_P(ShortMemory, WhatSucceedsIsDoneAndNothingIsLost) {
    const auto [manager, channels, refusal, ceiling] = GetParam();
    CacheRig rig(manager);
    rig.cache.setCeiling(ceiling * pagePixels * channels);
    int tries = 0;
    for (bool refused = true; refused && !testing::Test::HasFailure();) {
        SCOPED_TRACE("allocation " + std::to_string(++tries));
        {
            Script script(channels, tries, refusal);
            script.run();
            refused = script.refusedAny();
        }
        EXPECT_EQ(imageFailure(), 0);
        EXPECT_EQ(smartPageCount(), 0U);
        EXPECT_EQ(rig.cache.counts().usedBytes, 0U);
        EXPECT_EQ(rig.cache.swapBytes(), 0U);
    }
    EXPECT_GT(tries, 60);
    EXPECT_EQ(rig.cache.counts().swapWrites > 100, ceiling != 0);
}

INSTANTIATE_TEST_SUITE_P(Shapes, ShortMemory,
                         testing::Values(Shape{Manager::Off, 1, Refusal::One, 5},
                                         Shape{Manager::On, 4, Refusal::AllFromThereOn, 5},
                                         Shape{Manager::On, 1, Refusal::One, 0},
                                         Shape{Manager::Off, 4, Refusal::AllFromThereOn, 0}),
                         [](const auto& each) {
                             return std::string(each.param.manager == Manager::On ? "On" : "Off") +
                                    std::to_string(each.param.channels) +
                                    (each.param.refusal == Refusal::One ? "One" : "All") +
                                    (each.param.ceiling == 0 ? "" : "Paging");
                         });

}  // namespace
}  // namespace brushwork
