// The operations of ilSPMemoryImg that work on each pixel, block or row alike.

#include <cstring>

#include "image/work/bmp_dump.h"
#include "image/work/box_downsample.h"
#include "image/work/il_sp_memory_img.h"
#include "image/work/quarter_turns.h"
#include "image/work/tone_kernels.h"

namespace brushwork {

Ref<ilSPMemoryImg> ilSPMemoryImg::downsampled(float scale) {
    const BlockReduction reduction = blockReduction(scale);
    if (beginKernel(4) != ImageOk || reduction.block == 0) return {};
    const Extent<std::int32_t> size{sizeX_, sizeY_};
    const Extent<std::int32_t> smaller = reducedSize(size, reduction);
    Ref<ilSPMemoryImg> result(new ilSPMemoryImg(smaller.x, smaller.y, 4));
    if (!result->data_) return {};
    if (reduction.block == 1)
        std::memcpy(result->data_, data_, pixelCount() * 4);
    else
        boxDownsample(data_, size, reduction.block, result->data_, smaller);
    return result;
}

std::int32_t ilSPMemoryImg::box4x4Into(std::uint8_t* dest) {
    if (const auto result = beginKernel(1)) return result;
    if (!dest) return finish(ImageUnusable);
    boxDownsample4One(data_, {sizeX_, sizeY_}, dest);
    return ImageOk;
}

bool ilSPMemoryImg::writeBmp(std::u16string_view path) {
    return beginKernel() == ImageOk && brushwork::writeBmp(path, data_, sizeX_, sizeY_, channels_);
}

std::int32_t ilSPMemoryImg::turn(TurnFunction function) {
    if (const auto result = beginKernel()) return result;
    const std::size_t bytes = byteSize();
    std::uint8_t* const turned = imageAllocate(bytes);
    if (!turned) return finish(ImageUnusable);
    const std::size_t plane = pixelCount() * static_cast<std::size_t>(channels_);
    for (std::size_t at = 0; at < bytes; at += plane)
        function(data_ + at, turned + at, sizeX_, sizeY_, channels_);
    if (ownsBuffer()) {
        adoptBuffer(turned, bytes);
    } else {
        std::memcpy(data_, turned, bytes);
        imageFree(turned, bytes);
    }
    exchangeSizes();
    return changed();
}

std::int32_t ilSPMemoryImg::rotate90() {
    return turn(brushwork::rotate90);
}

std::int32_t ilSPMemoryImg::rotateMinus90() {
    return turn(brushwork::rotateMinus90);
}

std::int32_t ilSPMemoryImg::mirrorX() {
    if (const auto result = beginKernel()) return result;
    brushwork::mirrorX(data_, sizeX_, sizeY_, channels_);
    return changed();
}

std::int32_t ilSPMemoryImg::flipY() {
    if (const auto result = beginKernel()) return result;
    brushwork::flipY(data_, sizeX_, sizeY_, channels_);
    return changed();
}

std::int32_t ilSPMemoryImg::invert() {
    if (const auto result = beginKernel()) return result;
    if (channels_ == 4)
        invertFour(data_, pixelCount());
    else
        invertOne(data_, pixelCount());
    return changed();
}

std::int32_t ilSPMemoryImg::brightnessContrast(float brightness, float contrast) {
    if (const auto result = beginKernel(1)) return result;
    brushwork::brightnessContrast(data_, pixelCount(), brightness, contrast);
    return changed();
}

}  // namespace brushwork
