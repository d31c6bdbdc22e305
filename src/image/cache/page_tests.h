// What a page's pixels are: uniform, clear, opaque.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/cache/smart_page.h"

namespace brushwork {

// Whether all `count` words, or bytes, equal the first one; true for none.
[[nodiscard]] bool isUniform32(const std::uint32_t* pixels, std::size_t count);
[[nodiscard]] bool isUniform8(const std::uint8_t* pixels, std::size_t count);
// Whether every pixel of a page in memory equals the first; `value` gets that one. A solid page
// answers its value; any other state is false, and `value` stays.
[[nodiscard]] bool isUniformPage(const SmartPage& page, std::uint32_t& value);
// The same of the part of a page from (x, y), in pixels of the page, cut to it; nothing outside is
// read. False for an empty part.
[[nodiscard]] bool isUniformPart(const SmartPage& page, std::int32_t x, std::int32_t y,
                                 std::int32_t nx, std::int32_t ny, std::uint32_t& value);

// The class of a solid page by its value, and of a page in memory by its pixels; Mixed for one
// channel, for an empty part and for other states. Doesn't touch the cached class.
[[nodiscard]] AlphaClass alphaClassOfPage(const SmartPage& page);
[[nodiscard]] AlphaClass alphaClassOfPart(const SmartPage& page, std::int32_t x, std::int32_t y,
                                          std::int32_t nx, std::int32_t ny);

// Which of its cells hold something other than 0 (SmartPage::filledCells), by the pixels of a page
// of 4 channels in memory. Doesn't touch what is kept there.
[[nodiscard]] std::uint64_t filledCellsOf(const SmartPage& page);

}  // namespace brushwork
