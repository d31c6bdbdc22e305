#include "image/filter/il_convolution_img.h"

#include <cstddef>
#include <cstring>

#include "image/filter/fast_blur.h"
#include "image/filter/kernel_passes.h"

namespace brushwork {
namespace {

struct Pass {
    const std::uint8_t* source;
    std::uint8_t* target;
    int width;
    int height;
    bool fourChannels;
};

bool blur(const Pass& pass, int size) {
    const auto routine = pass.fourChannels ? fastBlur4 : fastBlur1;
    return routine(pass.source, pass.target, pass.width, pass.height, size);
}

bool filter(const Pass& pass, const ConvolutionKernel& kernel) {
    const auto size = static_cast<int>(kernel.size());
    if (kernel.sharpness() == -1.0f) return blur(pass, size);
    if (!kernel.weights()) return false;
    if (!kernel.fixedWeights() || size <= 2 || size % 2 == 0) {
        const auto routine = pass.fourChannels ? convolveFloat4 : convolveFloat1;
        routine(pass.source, pass.target, pass.width, pass.height, kernel.weights(), size);
    } else {
        const auto routine = pass.fourChannels ? convolveFixed4 : convolveFixed1;
        routine(pass.source, pass.target, pass.width, pass.height, kernel.fixedWeights(), size);
    }
    return true;
}

}  // namespace

const ClassDescriptor ilConvolutionImg::descriptor = {"Convolution Image",
                                                      &ilSPMemoryImg::descriptor};

ilConvolutionImg::~ilConvolutionImg() = default;

const char* ilConvolutionImg::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilConvolutionImg::classDescriptor() const {
    return descriptor;
}

std::int32_t ilConvolutionImg::convolve(const ConvolutionKernel& kernel) {
    if (const auto result = beginOperation()) return result;
    const std::size_t bytes = byteSize();
    std::int32_t result = ImageOk;
    if (!data_ || bytes == 0) {
        result = ImageUnusable;
    } else if (dataType_ != TypeUChar) {
        result = ImageNotAllowed;
    }
    if (result == ImageOk) {
        std::uint8_t* const filtered = imageAllocate(bytes);
        const Pass pass{data_, filtered, sizeX_, sizeY_, channels_ == 4};
        // What the pass doesn't cover, further planes or channels, stays.
        const std::size_t covered = static_cast<std::size_t>(sizeX_) *
                                    static_cast<std::size_t>(sizeY_) *
                                    (pass.fourChannels ? std::size_t{4} : std::size_t{1});
        if (filtered && filter(pass, kernel)) {
            std::memcpy(filtered + covered, data_ + covered, bytes - covered);
            adoptBuffer(filtered, bytes);
            setAltered(NotifyOnly);
        } else {
            if (filtered) imageFree(filtered, bytes);
            result = ImageUnusable;
        }
    }
    setStatus(result);
    return result;
}

}  // namespace brushwork
