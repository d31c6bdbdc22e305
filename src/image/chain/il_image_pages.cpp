#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "image/chain/il_image.h"
#include "image/chain/il_page_iterator.h"
#include "image/chain/il_region_lock.h"

namespace brushwork {
namespace {

bool isWithin(std::int32_t place, std::int32_t border, std::int32_t size) {
    return place >= -border && place < size;
}

// The image's channels that a config asks for.
std::vector<std::int32_t> askedChannels(const ilImageConfig& config, std::int32_t channels) {
    std::vector<std::int32_t> list;
    for (std::int32_t i = 0; i < config.channels; ++i) {
        const std::int32_t channel = config.channelAt(i);
        if (channel >= 0 && channel < channels) list.push_back(channel);
    }
    return list;
}

ilTile mapBox(ilTile box, std::int32_t from, std::int32_t to, Extent<std::int32_t> size) {
    const auto rect = mapRect<std::int32_t>({box.x, box.y, box.nx, box.ny}, from, to, size);
    return {rect.x, rect.y, box.z, rect.w, rect.h, box.nz};
}

}  // namespace

std::unique_ptr<ilRegionLock> ilImage::lockRegion(const ilTile& box, const ilImageConfig* config,
                                                  std::uint32_t mode) {
    if (reset() != ImageOk) return nullptr;
    ilTile area = box;
    if (config && config->coordSpace != 0) {
        area = mapBox(area, config->coordSpace, coordSpace_, {sizeX_, sizeY_});
    }
    clip(area);
    try {
        PageWalk walk;
        walk.box = area;
        walk.pageSize = {pageX_, pageY_, pageZ_, pageC_};
        walk.borderX = borderX_;
        walk.borderY = borderY_;
        walk.borderZ = borderZ_;
        walk.channels = channels_;
        std::vector<std::int32_t> asked;
        if (config && config->channels > 0) {
            asked = askedChannels(*config, channels_);
            if (asked.empty()) walk.channels = 0;
            walk.channelList = asked.data();
            walk.channelListCount = static_cast<std::int32_t>(asked.size());
        }
        std::vector<PageLockRequest> requests;
        for (ilPageIterator page(walk); page.next();) {
            requests.push_back({page.x(), page.y(), page.z(), page.c()});
        }
        const std::uint32_t pageMode = mode & ~std::uint32_t{LockRegionBits};
        return std::make_unique<ilRegionLock>(*this, std::move(requests), pageMode);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::int32_t ilImage::lockPages(std::span<PageLockRequest> requests, std::uint32_t) {
    if (reset() != ImageOk) return status();
    const ilImageConfig plain(dataType_, order_, pageC_);
    std::int32_t result = ImageOk;
    for (PageLockRequest& request : requests) {
        request.status = ImageOk;
        request.page = nullptr;
        if (!isWithin(request.x, borderX_, sizeX_) || !isWithin(request.y, borderY_, sizeY_) ||
            !isWithin(request.z, borderZ_, sizeZ_) || !isWithin(request.c, 0, channels_)) {
            continue;
        }
        std::unique_ptr<ilPage> page(
            new (std::nothrow) ilImagePage(request.x, request.y, request.z, request.c, pageBytes_));
        std::int32_t code = ImageUnusable;
        if (page && page->data()) {
            // A last group of fewer channels leaves the rest of its page unread.
            if (request.c > channels_ - pageC_) std::memset(page->data(), 0, pageBytes_);
            ilImageConfig config = plain;
            config.channelOffset = request.c;
            const ilTile box{request.x, request.y, request.z, pageX_, pageY_, pageZ_};
            code = readRegion(box, page->data(), box, &config);
        }
        if (code == ImageOk || code == ImageClipped) {
            request.page = page.release();
        } else {
            request.status = code;
            result = code;
        }
    }
    return result;
}

void ilImage::unlockPages(std::span<PageLockRequest> requests) {
    for (PageLockRequest& request : requests) {
        const std::unique_ptr<ilPage> page(std::exchange(request.page, nullptr));
    }
}

}  // namespace brushwork
