// What the vector forms of the run-length coder share; each includes it with vectors of its own.
//
// The encoder marks, 64 places at a time, each byte that equals the two before it. A repeat then
// starts two places before a mark and ends with the marks in a row, so that only bit scans decide
// and no byte is looked at one by one.
//
// `Vectors` is a type of the including file alone, so that no two files share code that was
// compiled for different processors. It offers
//   equalBefore(p)       bit k set where p[k] == p[k - 1], for k from 0 to 63
//   copyUpTo128(from, to, count), fillUpTo128(value, to, count)   write `count` bytes and perhaps
//                        more, up to 128; 128 can be read
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "image/swap/run_length.h"

namespace brushwork {

inline constexpr std::size_t mostMarked = 65536;  // bytes of the largest page

template <class Vectors>
class RepeatMarks {
  public:
    // At most `mostMarked` bytes, at least 64.
    RepeatMarks(const std::uint8_t* bytes, std::size_t n) : n_(n) {
        const std::size_t whole = n / 64;
        // Nothing stands before the first byte.
        std::uint8_t first[65];
        first[0] = static_cast<std::uint8_t>(~bytes[0]);
        std::memcpy(first + 1, bytes, 64);
        words_[0] = thirds(Vectors::equalBefore(first + 1), false);
        for (std::size_t i = 1; i < whole; ++i)
            words_[i] = thirds(Vectors::equalBefore(bytes + 64 * i), pairBefore(bytes + 64 * i));
        const std::size_t rest = n % 64;
        words_[whole] = 0;
        if (rest > 0) {
            const std::uint8_t* p = bytes + n - rest;
            std::uint8_t last[65] = {p[-1]};
            std::memcpy(last + 1, p, rest);
            words_[whole] = thirds(Vectors::equalBefore(last + 1), pairBefore(p)) &
                            ((std::uint64_t{1} << rest) - 1);
        }
        words_[whole + 1] = 0;
    }

    // The first marked place from `place` on; n if there is none.
    [[nodiscard]] std::size_t next(std::size_t place) const { return find(place, 0); }
    // The first place from `place` on that isn't marked.
    [[nodiscard]] std::size_t end(std::size_t place) const {
        return find(place, ~std::uint64_t{0});
    }

  private:
    static bool pairBefore(const std::uint8_t* p) { return p[-1] == p[-2]; }
    static std::uint64_t thirds(std::uint64_t equal, bool before) {
        return equal & (equal << 1 | static_cast<std::uint64_t>(before));
    }

    // Looks at the 57 places or more from `place` on at once, wherever it lies in its word: a
    // branch for the end of a word would be guessed wrong as often as not.
    [[nodiscard]] std::size_t find(std::size_t place, std::uint64_t turned) const {
        while (place < n_) {
            std::uint64_t bits;
            std::memcpy(&bits, reinterpret_cast<const std::uint8_t*>(words_) + place / 8,
                        sizeof bits);
            bits = (bits ^ turned) >> (place % 8);
            if (bits != 0)
                return std::min(n_, place + static_cast<std::size_t>(std::countr_zero(bits)));
            place = place / 8 * 8 + 64;
        }
        return n_;
    }

    std::size_t n_;
    std::uint64_t words_[mostMarked / 64 + 2];
};

template <class Vectors>
class PacketRun {
  public:
    PacketRun(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets)
        : bytes_(bytes), packets_(packets), n_(n) {}

    // Before each packet the output ends at least 129 bytes before n, so that the longest one fits
    // with the overshoot of a whole copy.
    bool literal(std::size_t count) {
        std::uint8_t* to = packets_ + output_;
        *to = static_cast<std::uint8_t>(128 + count);
        if (n_ - input_ >= 128)
            Vectors::copyUpTo128(bytes_ + input_, to + 1, count);
        else
            std::memcpy(to + 1, bytes_ + input_, count);
        return advance(count, count + 1);
    }
    bool repeat(std::size_t count) {
        packets_[output_] = static_cast<std::uint8_t>(count);
        packets_[output_ + 1] = bytes_[input_];
        return advance(count, 2);
    }
    [[nodiscard]] std::size_t input() const { return input_; }
    [[nodiscard]] std::size_t output() const { return output_; }

  private:
    bool advance(std::size_t input, std::size_t output) {
        input_ += input;
        output_ += output;
        return (output_ <= n_ / 2 || input_ > n_ / 2) && n_ - output_ > 128;
    }

    const std::uint8_t* bytes_;
    std::uint8_t* packets_;
    std::size_t n_;
    std::size_t input_ = 0, output_ = 0;
};

template <class Vectors>
std::size_t encodePackets(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets) {
    if (n <= 128) return n;
    if (n > mostMarked) return runLengthKernelsScalar.encode(bytes, n, packets);
    const RepeatMarks<Vectors> marks(bytes, n);
    PacketRun<Vectors> run(bytes, n, packets);
    std::size_t third = 0;  // the next mark whose two bytes before aren't written yet
    while (run.input() < n) {
        if (third < run.input() + 2) third = marks.next(run.input() + 2);
        if (third - run.input() >= longestLiteral || third >= n) {
            if (!run.literal(std::min(longestLiteral, n - run.input()))) return n;
            continue;
        }
        const std::size_t before = third - 2 - run.input();
        if (before > 0 && !run.literal(before)) return n;
        const std::size_t end = marks.end(third);
        while (end - run.input() >= 3)
            if (!run.repeat(std::min(longestRepeat, end - run.input()))) return n;
    }
    return run.output();
}

template <class Vectors>
std::size_t decodePackets(const std::uint8_t* packets, std::size_t stored, std::uint8_t* bytes,
                          std::size_t n) {
    std::size_t done = 0;
    std::size_t at = 0;
    // While whole copies stay inside both buffers.
    while (stored - at >= 129 && n - done >= 128) {
        const std::size_t header = packets[at];
        // Guessing the kind of a packet from those before it beats telling it without a branch: the
        // next header is then looked at before this one is through.
        if (header > 128) {
            const std::size_t count = header - 128;
            Vectors::copyUpTo128(packets + at + 1, bytes + done, count);
            at += 1 + count;
            done += count;
        } else {
            Vectors::fillUpTo128(packets[at + 1], bytes + done, header);
            at += 2;
            done += header;
        }
    }
    const std::size_t rest =
        runLengthKernelsScalar.decode(packets + at, stored - at, bytes + done, n - done);
    return done + rest;
}

}  // namespace brushwork
