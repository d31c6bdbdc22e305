#include "platform/codec_tiff.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "platform/codec_tiff_read.h"
#include "platform/codec_tiff_write.h"

namespace brushwork::platform {

namespace {

// Byte order and version: 42 for classic files, 43 for big ones.
constexpr std::array<std::array<std::uint8_t, 4>, 4> signatures{{
    {'I', 'I', 42, 0},
    {'M', 'M', 0, 42},
    {'I', 'I', 43, 0},
    {'M', 'M', 0, 43},
}};

bool recognises(std::span<const std::uint8_t> head) {
    return std::any_of(signatures.begin(), signatures.end(), [&](const auto& signature) {
        return head.size() >= signature.size() &&
               std::equal(signature.begin(), signature.end(), head.begin());
    });
}

constexpr Guid encoderClass{
    0x557cf405, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace

const Codec& tiffCodec() {
    static constexpr Codec codec{{encoderClass, imageFormatTiff, u"image/tiff", u"TIFF"},
                                 recognises,
                                 makeTiffReader,
                                 writeTiff};
    return codec;
}

}  // namespace brushwork::platform
