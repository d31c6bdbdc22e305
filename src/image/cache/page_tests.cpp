#include "image/cache/page_tests.h"

#include <algorithm>

#include "image/cache/page_kernels.h"

namespace brushwork {
namespace {

const std::uint32_t* wordsOf(const SmartPage& page) {
    return reinterpret_cast<const std::uint32_t*>(page.data);
}

// A box within the page.
struct Part {
    std::size_t x, y, nx, ny;

    [[nodiscard]] bool isEmpty() const { return nx == 0 || ny == 0; }
    [[nodiscard]] bool isWhole() const { return nx == pageSide && ny == pageSide; }
    [[nodiscard]] std::size_t start() const { return y * pageSide + x; }
};

Part partOf(std::int32_t x, std::int32_t y, std::int32_t nx, std::int32_t ny) {
    const auto cut = [](std::int64_t value) {
        return static_cast<std::size_t>(std::clamp<std::int64_t>(value, 0, pageSide));
    };
    Part part = {cut(x), cut(y), cut(std::int64_t{x} + nx), cut(std::int64_t{y} + ny)};
    part.nx = part.nx > part.x ? part.nx - part.x : 0;
    part.ny = part.ny > part.y ? part.ny - part.y : 0;
    return part;
}

// The first row's pixels equal each other, and each further row equals the first one.
bool isUniformBox(const SmartPage& page, const Part& part) {
    const PageKernels& kernels = pageKernels();
    for (std::size_t row = 0; row < part.ny; ++row) {
        const std::size_t at = part.start() + row * pageSide;
        if (page.channels == 1) {
            if (page.data[at] != page.data[part.start()]) return false;
            if (!kernels.uniform8(page.data + at, part.nx)) return false;
        } else {
            if (wordsOf(page)[at] != wordsOf(page)[part.start()]) return false;
            if (!kernels.uniform32(wordsOf(page) + at, part.nx)) return false;
        }
    }
    return true;
}

AlphaClass classOfAlpha(std::uint32_t alpha) {
    if (alpha == 0) return AlphaClass::Clear;
    return alpha == 255 ? AlphaClass::Opaque : AlphaClass::Mixed;
}

AlphaClass classOfBox(const SmartPage& page, const Part& part) {
    const std::uint32_t* const words = wordsOf(page);
    const std::size_t start = part.start();
    const std::uint32_t alpha = words[start] >> 24;
    const AlphaClass first = classOfAlpha(alpha);
    if (first == AlphaClass::Mixed) return first;
    // The places where a mixed page is likely to show it.
    const std::size_t right = part.nx - 1, top = (part.ny - 1) * pageSide;
    const std::size_t middle = part.ny / 2 * pageSide + part.nx / 2;
    for (const std::size_t place : {right, top, top + right, middle})
        if (words[start + place] >> 24 != alpha) return AlphaClass::Mixed;
    const PageKernels& kernels = pageKernels();
    const auto wanted = static_cast<std::uint8_t>(alpha);
    if (part.isWhole())
        return kernels.alphaIs(words, pagePixels, wanted) ? first : AlphaClass::Mixed;
    for (std::size_t row = 0; row < part.ny; ++row)
        if (!kernels.alphaIs(words + start + row * pageSide, part.nx, wanted))
            return AlphaClass::Mixed;
    return first;
}

}  // namespace

bool isUniform32(const std::uint32_t* pixels, std::size_t count) {
    return pageKernels().uniform32(pixels, count);
}

bool isUniform8(const std::uint8_t* pixels, std::size_t count) {
    return pageKernels().uniform8(pixels, count);
}

bool isUniformPage(const SmartPage& page, std::uint32_t& value) {
    return isUniformPart(page, 0, 0, pageSide, pageSide, value);
}

bool isUniformPart(const SmartPage& page, std::int32_t x, std::int32_t y, std::int32_t nx,
                   std::int32_t ny, std::uint32_t& value) {
    const Part part = partOf(x, y, nx, ny);
    if (part.isEmpty()) return false;
    if (page.isSolid()) {
        value = page.solid;
        return true;
    }
    if (!page.inMemory() || !page.data) return false;
    if (part.isWhole()) {
        const bool uniform = page.channels == 1 ? isUniform8(page.data, pagePixels)
                                                : isUniform32(wordsOf(page), pagePixels);
        if (!uniform) return false;
    } else if (!isUniformBox(page, part)) {
        return false;
    }
    value = page.channels == 1 ? page.data[part.start()] : wordsOf(page)[part.start()];
    return true;
}

AlphaClass alphaClassOfPage(const SmartPage& page) {
    return alphaClassOfPart(page, 0, 0, pageSide, pageSide);
}

AlphaClass alphaClassOfPart(const SmartPage& page, std::int32_t x, std::int32_t y, std::int32_t nx,
                            std::int32_t ny) {
    const Part part = partOf(x, y, nx, ny);
    if (page.channels == 1 || part.isEmpty()) return AlphaClass::Mixed;
    if (page.isSolid()) return classOfAlpha(page.solid >> 24);
    return page.inMemory() && page.data ? classOfBox(page, part) : AlphaClass::Mixed;
}

std::uint64_t filledCellsOf(const SmartPage& page) {
    return pageKernels().filledCells(wordsOf(page));
}

}  // namespace brushwork
