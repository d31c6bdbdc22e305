// The inner loops of the tests on page pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

struct PageKernels {
    // Whether all words, or bytes, equal the first; true for none and one.
    bool (*uniform32)(const std::uint32_t* pixels, std::size_t count);
    bool (*uniform8)(const std::uint8_t* pixels, std::size_t count);
    // Whether the highest byte of all words is `alpha`.
    bool (*alphaIs)(const std::uint32_t* pixels, std::size_t count, std::uint8_t alpha);
    // Of a whole page: the cells of 16 by 16 words that aren't all 0, bit x / 16 + y / 16 * 8.
    std::uint64_t (*filledCells)(const std::uint32_t* pixels);
};

// `pixels` is aligned as its type, no more. The wider forms read nothing that the plain one
// wouldn't, and stop within some hundred bytes of the first difference.
[[nodiscard]] const PageKernels& pageKernels(VectorLevel level = vectorLevel());
extern const PageKernels pageKernelsScalar;
extern const PageKernels pageKernelsSse2;
extern const PageKernels pageKernelsAvx2;

}  // namespace brushwork
