#include "image/cache/page_kernels.h"

#include "image/cache/smart_page.h"

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

std::uint64_t filledCells(const std::uint32_t* pixels) {
    noteKernelForm(VectorLevel::Scalar);
    std::uint64_t cells = 0;
    for (unsigned y = 0; y < pageSide; ++y)
        for (unsigned x = 0; x < pageSide; ++x)
            if (pixels[y * pageSide + x] != 0) cells |= std::uint64_t{1} << (x / 16 + y / 16 * 8);
    return cells;
}

}  // namespace

const PageKernels pageKernelsScalar = {uniform32, uniform8, alphaIs, filledCells};

const PageKernels& pageKernels(VectorLevel level) {
    switch (level) {
        case VectorLevel::Avx2: return pageKernelsAvx2;
        case VectorLevel::Sse2: return pageKernelsSse2;
        case VectorLevel::Scalar: break;
    }
    return pageKernelsScalar;
}

}  // namespace brushwork
