#include "platform/codec_png.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "platform/codec_png_read.h"
#include "platform/codec_png_write.h"

namespace brushwork::platform {

namespace {

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};

bool recognises(std::span<const std::uint8_t> head) {
    return head.size() >= signature.size() &&
           std::equal(signature.begin(), signature.end(), head.begin());
}

constexpr Guid encoderClass{
    0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace

const Codec& pngCodec() {
    static constexpr Codec codec{
        {encoderClass, imageFormatPng, u"image/png", u"PNG"}, recognises, makePngReader, writePng};
    return codec;
}

}  // namespace brushwork::platform
