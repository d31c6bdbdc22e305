#include "platform/codec_gif.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "platform/codec_gif_read.h"
#include "platform/codec_gif_write.h"

namespace brushwork::platform {

namespace {

bool recognises(std::span<const std::uint8_t> head) {
    constexpr std::array<std::uint8_t, 4> stamp{'G', 'I', 'F', '8'};
    return head.size() >= 6 && std::equal(stamp.begin(), stamp.end(), head.begin()) &&
           (head[4] == '7' || head[4] == '9') && head[5] == 'a';
}

constexpr Guid encoderClass{
    0x557cf402, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace

const Codec& gifCodec() {
    static constexpr Codec codec{
        {encoderClass, imageFormatGif, u"image/gif", u"GIF"}, recognises, makeGifReader, writeGif};
    return codec;
}

}  // namespace brushwork::platform
