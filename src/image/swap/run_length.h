// The bytes of a page in the swap file: run-length packets, and pixels taken apart into planes.
//
// A packet is a header byte c and what follows. Above 128, c - 128 bytes follow that stand for
// themselves, 127 at most; otherwise the next byte stands for c equal ones. The encoder goes from
// left to right and holds a run of bytes that stand for themselves. The third equal byte in that
// run takes the two before it back and begins a repeat of 3, which grows to 128 at most; the run up
// to there is written first, if it holds anything. A run is also written when it reaches 127 bytes,
// if the 127th didn't begin a repeat, and at the end. What was written is never looked at again: of
// 130 equal bytes the last two stand for themselves.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

inline constexpr std::size_t longestLiteral = 127;
inline constexpr std::size_t longestRepeat = 128;

// Writes the packets of `n` bytes into `packets`, which has room for n, and answers how many bytes
// they take. It answers n, with undefined `packets`, where packets save too little: if after one of
// them the output has passed n / 2 and the input it stands for hasn't, or if the output came within
// 128 bytes of n.
using PacketEncoder = std::size_t (*)(const std::uint8_t* bytes, std::size_t n,
                                      std::uint8_t* packets);
// As splitPlanes() of a page of `n` bytes, a multiple of 4, into `planes`, which has room for n,
// and encode() of them.
using PageEncoder = std::size_t (*)(const std::uint8_t* pixels, std::size_t n, std::uint8_t* planes,
                                    std::uint8_t* packets);
// Writes at most `n` bytes and answers how many the packets gave. Any packets will do: a repeat of
// 0 gives nothing, a packet that is cut off gives nothing and ends the decoding, and of one that
// reaches beyond n the rest is dropped. What stands in `bytes` behind the answer is undefined.
using PacketDecoder = std::size_t (*)(const std::uint8_t* packets, std::size_t stored,
                                      std::uint8_t* bytes, std::size_t n);
// Pixels of 4 bytes into four planes of `count` bytes that stand in order, and back.
using PlaneStep = void (*)(const std::uint8_t* from, std::size_t count, std::uint8_t* to);

struct RunLengthKernels {
    PacketEncoder encode;
    PageEncoder encodePlanes;
    PacketDecoder decode;
    PlaneStep splitPlanes;
    PlaneStep joinPlanes;
};
[[nodiscard]] const RunLengthKernels& runLengthKernels(VectorLevel level = vectorLevel());
extern const RunLengthKernels runLengthKernelsScalar;
extern const RunLengthKernels runLengthKernelsSse2;
extern const RunLengthKernels runLengthKernelsAvx2;  // null where the narrower form is as good

}  // namespace brushwork
