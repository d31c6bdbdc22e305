// An image without bounds in pages of 128 x 128, as a stand-in for every image that makes, shares,
// copies and refuses pages: it counts its locks and gives a writer its own copy of a shared page.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork::test {

class PageImage : public ilImage {
  public:
    static constexpr std::int32_t side = 128;
    // What a pixel holds before anybody writes to it.
    using Content = std::function<std::uint8_t(std::int32_t x, std::int32_t y, std::int32_t c)>;

    PageImage(std::int32_t channels, Content content) : content_(std::move(content)) {
        imageKind_ = KindSmart;
        channels_ = channels;
        dataType_ = TypeUChar;
        order_ = OrderInterleaved;
        setDefaultPageSize(side, side, 1, channels);
        altered_ = 0;
    }

    // Pages at which locks fail, or answer null.
    std::function<bool(std::int32_t x, std::int32_t y)> refuses;
    int openLocks = 0, mostOpenLocks = 0, locks = 0, writeLocks = 0, copies = 0;

    // Another image over the same pages.
    Ref<PageImage> clone() {
        const auto copy = makeRef<PageImage>(channels_, content_);
        for (const auto& [place, page] : pages_) copy->pages_[place].pixels = page.pixels;
        return copy;
    }
    std::uint8_t at(std::int32_t x, std::int32_t y, std::int32_t c) {
        const Place origin{x & ~(side - 1), y & ~(side - 1)};
        const auto found = pages_.find(origin);
        if (found == pages_.end()) return content_(x, y, c);
        const auto n = static_cast<std::size_t>(((y & 127) * side + (x & 127)) * channels_ + c);
        return (*found->second.pixels)[n];
    }
    // Corners of the pages that exist.
    std::vector<std::pair<std::int32_t, std::int32_t>> places() const {
        std::vector<Place> result;
        for (const auto& entry : pages_) result.push_back(entry.first);
        return result;
    }

    std::int32_t readRegion(const ilTile&, void*, const ilTile&, const ilImageConfig*) override {
        return ImageNotAllowed;
    }
    std::int32_t writeRegion(const ilTile&, const void*, const ilTile&,
                             const ilImageConfig*) override {
        return ImageNotAllowed;
    }
    std::int32_t lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) override {
        std::int32_t result = ImageOk;
        for (PageLockRequest& request : requests) {
            const Place origin{request.x & ~(side - 1), request.y & ~(side - 1)};
            request.page = nullptr;
            request.status = ImageOk;
            if (refuses && refuses(origin.first, origin.second)) {
                result = request.status = origin.first & side ? ImageOk : ImageUnusable;
                continue;
            }
            Page& page = pages_[origin];
            if (!page.pixels) fill(page, origin);
            if (mode & LockWrite) {
                ++writeLocks;
                if (page.pixels.use_count() > 1) {
                    page.pixels = std::make_shared<Pixels>(*page.pixels);
                    page.handle.reset();
                    ++copies;
                }
            }
            if (!page.handle)
                page.handle = std::make_unique<ilPage>(origin.first, origin.second, 0, 0,
                                                       page.pixels->data());
            request.page = page.handle.get();
            mostOpenLocks = std::max(mostOpenLocks, ++openLocks);
            ++locks;
        }
        return result;
    }
    void unlockPages(std::span<PageLockRequest> requests) override {
        for (PageLockRequest& request : requests) {
            EXPECT_NE(request.page, nullptr);  // what wasn't locked
            if (std::exchange(request.page, nullptr)) --openLocks;
        }
    }

  private:
    using Place = std::pair<std::int32_t, std::int32_t>;
    using Pixels = std::vector<std::uint8_t>;
    struct Page {
        std::shared_ptr<Pixels> pixels;
        std::unique_ptr<ilPage> handle;
    };

    void fill(Page& page, Place origin) {
        page.pixels = std::make_shared<Pixels>();
        for (std::int32_t y = 0; y < side; ++y)
            for (std::int32_t x = 0; x < side; ++x)
                for (std::int32_t c = 0; c < channels_; ++c)
                    page.pixels->push_back(content_(origin.first + x, origin.second + y, c));
    }

    Content content_;
    std::map<Place, Page> pages_;
};

}  // namespace brushwork::test
