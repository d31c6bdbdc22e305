#include "image/cache/page_kernels.h"

namespace brushwork {
namespace {

bool uniform32(const std::uint32_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 1; i < count; ++i)
        if (pixels[i] != pixels[0]) return false;
    return true;
}

bool uniform8(const std::uint8_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 1; i < count; ++i)
        if (pixels[i] != pixels[0]) return false;
    return true;
}

bool alphaIs(const std::uint32_t* pixels, std::size_t count, std::uint8_t alpha) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < count; ++i)
        if (pixels[i] >> 24 != alpha) return false;
    return true;
}

}  // namespace

const PageKernels pageKernelsScalar = {uniform32, uniform8, alphaIs};

const PageKernels& pageKernels(VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: return pageKernelsAvx2;
        case VectorLevel::Sse2: return pageKernelsSse2;
        case VectorLevel::Scalar: break;
    }
    return pageKernelsScalar;
}

}  // namespace brushwork
