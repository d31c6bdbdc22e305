// A picture as rows of indices into a palette made for it, for whoever writes a GIF.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/gif_dither.h"
#include "platform/gif_palette.h"
#include "platform/imaging.h"

namespace brushwork::platform {

inline constexpr std::int32_t largestGifSide = 65535;

// The palette is exact where one can hold all of the picture's colours, else the best that we find,
// with the error spread. The source is read twice; memory for the rows may throw.
class GifRows {
  public:
    explicit GifRows(const EncodeRequest& request);

    // First. False if the source failed.
    [[nodiscard]] bool choosePalette();
    // 0xrrggbb, without the transparent entry, whose index is the one behind them.
    [[nodiscard]] const std::vector<std::uint32_t>& colours() const { return colours_; }
    [[nodiscard]] bool hasTransparency() const { return transparent_; }
    [[nodiscard]] std::uint8_t transparentIndex() const {
        return static_cast<std::uint8_t>(colours_.size());
    }
    // How many entries a file's table has: a power of two, 2 to 256.
    [[nodiscard]] std::size_t tableSize() const;

    // Rows from the top, each once. False if the source failed or its rows have changed.
    [[nodiscard]] bool nextRow(std::int32_t y, std::uint8_t* indices);

  private:
    bool mapExactly(std::uint8_t* indices) const;

    const EncodeRequest& request_;
    std::size_t width_;
    std::vector<std::uint8_t> row_;
    std::vector<std::uint32_t> colours_;
    bool transparent_ = false;
    ColourTable exact_;
    std::unique_ptr<ErrorDiffuser> diffuser_;  // null where the palette is exact
};

}  // namespace brushwork::platform
