#include "image/swap/run_length.h"

#include <algorithm>
#include <cstring>

namespace brushwork {
namespace {

class PacketWriter {
  public:
    PacketWriter(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets)
        : bytes_(bytes), n_(n), packets_(packets) {}

    // The next `count` bytes of the input as they are, or as one byte repeated. False: give up.
    bool literal(std::size_t count) {
        if (!fits(count + 1)) return false;
        packets_[output_] = static_cast<std::uint8_t>(128 + count);
        std::memcpy(packets_ + output_ + 1, bytes_ + input_, count);
        return advance(count, count + 1);
    }
    bool repeat(std::size_t count) {
        if (!fits(2)) return false;
        packets_[output_] = static_cast<std::uint8_t>(count);
        packets_[output_ + 1] = bytes_[input_];
        return advance(count, 2);
    }
    [[nodiscard]] std::size_t output() const { return output_; }

  private:
    // Only a stream so short that no packet saves enough can fail here.
    [[nodiscard]] bool fits(std::size_t room) const { return output_ + room <= n_; }
    bool advance(std::size_t input, std::size_t output) {
        input_ += input;
        output_ += output;
        const bool behind = output_ > n_ / 2 && input_ <= n_ / 2;
        return !behind && n_ - output_ > 128;
    }

    const std::uint8_t* bytes_;
    std::size_t n_;
    std::uint8_t* packets_;
    std::size_t input_ = 0, output_ = 0;
};

std::size_t encode(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets) {
    noteKernelForm(VectorLevel::Scalar);
    PacketWriter writer(bytes, n, packets);
    std::size_t literal = 0;  // bytes waiting to be written, before place i
    std::size_t i = 0;
    while (i < n) {
        const bool third = literal >= 2 && bytes[i] == bytes[i - 1] && bytes[i - 1] == bytes[i - 2];
        if (third) {
            if (literal > 2 && !writer.literal(literal - 2)) return n;
            std::size_t count = 2;
            while (i < n && bytes[i] == bytes[i - 1] && count < longestRepeat) ++i, ++count;
            if (!writer.repeat(count)) return n;
            literal = 0;
            continue;
        }
        ++i;
        if (++literal == longestLiteral) {
            if (!writer.literal(literal)) return n;
            literal = 0;
        }
    }
    if (literal > 0 && !writer.literal(literal)) return n;
    return writer.output();
}

std::size_t decode(const std::uint8_t* packets, std::size_t stored, std::uint8_t* bytes,
                   std::size_t n) {
    noteKernelForm(VectorLevel::Scalar);
    std::size_t done = 0;
    std::size_t at = 0;
    while (at < stored && done < n) {
        const std::size_t header = packets[at++];
        const std::size_t following = header > 128 ? header - 128 : 1;
        if (stored - at < following) break;
        const std::size_t count = std::min(header > 128 ? following : header, n - done);
        if (header > 128)
            std::memcpy(bytes + done, packets + at, count);
        else
            std::memset(bytes + done, packets[at], count);
        at += following;
        done += count;
    }
    return done;
}

void splitPlanes(const std::uint8_t* pixels, std::size_t count, std::uint8_t* planes) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            planes[plane * count + i] = pixels[4 * i + plane];
}

void joinPlanes(const std::uint8_t* planes, std::size_t count, std::uint8_t* pixels) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t plane = 0; plane < 4; ++plane)
            pixels[4 * i + plane] = planes[plane * count + i];
}

std::size_t encodePlanes(const std::uint8_t* pixels, std::size_t n, std::uint8_t* planes,
                         std::uint8_t* packets) {
    splitPlanes(pixels, n / 4, planes);
    return encode(planes, n, packets);
}

RunLengthKernels filledUp(RunLengthKernels kernels, const RunLengthKernels& narrower) {
    if (!kernels.encode) kernels.encode = narrower.encode;
    if (!kernels.encodePlanes) kernels.encodePlanes = narrower.encodePlanes;
    if (!kernels.decode) kernels.decode = narrower.decode;
    if (!kernels.splitPlanes) kernels.splitPlanes = narrower.splitPlanes;
    if (!kernels.joinPlanes) kernels.joinPlanes = narrower.joinPlanes;
    return kernels;
}

}  // namespace

const RunLengthKernels runLengthKernelsScalar = {encode, encodePlanes, decode, splitPlanes,
                                                 joinPlanes};

const RunLengthKernels& runLengthKernels(VectorLevel level) {
    static const RunLengthKernels sse2 = filledUp(runLengthKernelsSse2, runLengthKernelsScalar);
    static const RunLengthKernels avx2 = filledUp(runLengthKernelsAvx2, sse2);
    switch (level) {
        case VectorLevel::Avx2: return avx2;
        case VectorLevel::Sse2: return sse2;
        default: return runLengthKernelsScalar;
    }
}

}  // namespace brushwork
