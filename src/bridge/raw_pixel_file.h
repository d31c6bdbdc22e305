// The pixel exchange file between client and helper.
//
// It has no header: height rows of width * channels bytes, without padding, the bottom row of the
// picture first. With four channels a pixel is blue, green, red, alpha. The file's size is width *
// height * channels. These classes turn the rows over: row 0 is the top of the picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/imaging.h"
#include "platform/swap_io.h"

namespace brushwork {

// The bytes of a pixel file; nothing if a size is below 1 or the product passes 2^63 - 1.
[[nodiscard]] std::optional<std::uint64_t> pixelFileBytes(std::int32_t width, std::int32_t height,
                                                          std::int32_t channels);

// Writes a new file of four channels. Rows may come in any order and are gathered into blocks;
// what never comes stays zero. Until finish() has answered true the file is removed with the
// object. It stays noted as a partial file until whoever tells its reader drops that note
// (platform::dropPartialFile).
class RawPixelWriter final : public platform::RowSink {
  public:
    RawPixelWriter() = default;
    RawPixelWriter(const RawPixelWriter&) = delete;
    RawPixelWriter& operator=(const RawPixelWriter&) = delete;
    ~RawPixelWriter() override;

    // False if the file exists or can't be made.
    [[nodiscard]] bool create(std::u16string_view path, std::int32_t width, std::int32_t height);
    [[nodiscard]] bool putRows(std::int32_t y, std::int32_t count,
                               const std::uint8_t* bgra) override;
    [[nodiscard]] bool finish();

  private:
    [[nodiscard]] bool flush();

    platform::PositionedFile file_;
    std::u16string path_;
    std::size_t rowBytes_ = 0;
    std::int32_t height_ = 0;
    std::int32_t blockRows_ = 0;       // room of block_
    std::vector<std::uint8_t> block_;  // consecutive rows, lowest first
    std::int32_t firstRow_ = 0;        // picture row of the newest row in block_ is firstRow_ +
    std::int32_t gathered_ = 0;        // gathered_ - 1, and it stands lowest in block_
};

// Reads a pixel file as rows of 32-bit pixels. With fewer than four channels the packed rows lie
// one behind the other at the start of a 32-bit bitmap that is otherwise zero: the pitch of the
// file's rows is honoured, a pixel's meaning isn't.
class RawPixelReader final : public platform::RowSource {
  public:
    // `channels` is 1 to 4. False if the file can't be opened or is too short.
    [[nodiscard]] bool open(std::u16string_view path, std::int32_t width, std::int32_t height,
                            std::int32_t channels);
    [[nodiscard]] bool getRow(std::int32_t y, std::uint8_t* bgra) override;

  private:
    // Copies bytes of the packed picture, top row first; zero beyond its end.
    [[nodiscard]] bool readPacked(std::uint64_t offset, std::uint8_t* bytes, std::size_t count);
    [[nodiscard]] bool loadBlock(std::int32_t packedRow);

    platform::PositionedFile file_;
    std::size_t rowBytes_ = 0;   // of the 32-bit bitmap
    std::size_t packedRow_ = 0;  // of the file
    std::int32_t height_ = 0;
    std::vector<std::uint8_t> block_;  // some rows of the file, as they lie there
    std::int32_t blockRows_ = 0;
    std::int32_t blockFirst_ = -1;  // top-most picture row in block_
    std::int32_t blockCount_ = 0;
};

}  // namespace brushwork
