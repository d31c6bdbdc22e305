// What the vector forms of the run-length coder share; each includes it with vectors of its own.
//
// The encoder marks, 64 places at a time, each byte that equals the two before it, and notes where
// marks begin and end: a repeat starts two places before its first mark. Words without such a place
// are left out, and the others are listed by a table, a byte at a time, without asking how many a
// word has. What stands between two repeats is written together with the second one, in one step
// that takes no branch on lengths but for the rare long ones. The decoder takes a literal and the
// repeat behind it in one step. All this because a branch on the lengths in paint is guessed wrong
// as often as not.
//
// `Vectors` is a type of the including file alone, so that no two files share code that was
// compiled for different processors. It offers
//   equalBefore(p)       bit k set where p[k] == p[k - 1], for k from 0 to 63
//   copyUpTo128(from, to, count), fillUpTo128(value, to, count)   write `count` bytes and perhaps
//                        more, up to 128; 128 can be read
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "image/swap/run_length.h"

namespace brushwork {

inline constexpr std::size_t mostMarked = 65536;  // bytes of the largest page

// The places of the bits that are set in a byte, in order, and as the last entry their number:
// marks begin and end at most six times in eight places.
using BitsOfByte = std::array<std::array<std::uint16_t, 8>, 256>;
alignas(16) inline constexpr BitsOfByte bitsOfByte = [] {
    BitsOfByte bits{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        std::size_t count = 0;
        for (unsigned bit = 0; bit < 8; ++bit)
            if (byte >> bit & 1) bits[byte][count++] = static_cast<std::uint16_t>(bit);
        bits[byte][7] = static_cast<std::uint16_t>(count);
    }
    return bits;
}();

// Where marks begin and end in a stream, by turns. An end of 0 is that of the largest stream.
template <class Vectors>
class RepeatEdges {
  public:
    // `n` is a multiple of 64. Bit k of equal[i] is set where byte 32 * i + k equals the one
    // before.
    RepeatEdges(const std::uint32_t* equal, std::size_t n) {
        for (std::size_t i = 0; i < n / 32; i += 2)
            add(std::uint64_t{equal[i + 1]} << 32 | equal[i], 32 * i);
        list(n);
    }
    // At most `mostMarked` bytes, at least 64.
    RepeatEdges(const std::uint8_t* bytes, std::size_t n) {
        const std::size_t whole = n / 64;
        // Nothing stands before the first byte.
        std::uint8_t first[65];
        first[0] = static_cast<std::uint8_t>(~bytes[0]);
        std::memcpy(first + 1, bytes, 64);
        add(Vectors::equalBefore(first + 1), 0);
        for (std::size_t i = 1; i < whole; ++i) add(Vectors::equalBefore(bytes + 64 * i), 64 * i);
        if (const std::size_t rest = n % 64) {
            const std::uint8_t* p = bytes + n - rest;
            std::uint8_t last[65] = {p[-1]};
            std::memcpy(last + 1, p, rest);
            add(Vectors::equalBefore(last + 1) & ((std::uint64_t{1} << rest) - 1), n - rest);
        }
        list(n);
    }

    [[nodiscard]] const std::uint16_t* begin() const { return places_; }
    [[nodiscard]] const std::uint16_t* end() const { return places_ + count_; }

  private:
    // Keeps the words with an edge in them, without a branch.
    void add(std::uint64_t equal, std::size_t at) {
        const std::uint64_t marks = equal & (equal << 1 | equalBefore_);
        const std::uint64_t edges = marks ^ (marks << 1 | markedBefore_);
        equalBefore_ = equal >> 63;
        markedBefore_ = marks >> 63;
        addWord(static_cast<std::uint32_t>(edges), at);
        addWord(static_cast<std::uint32_t>(edges >> 32), at + 32);
    }
    void addWord(std::uint32_t edges, std::size_t at) {
        words_[wordCount_] = edges;
        starts_[wordCount_] = static_cast<std::uint16_t>(at);
        wordCount_ += static_cast<std::size_t>(edges != 0);
    }
    // Writes the places of the bits that are set in a word of edges, in order, with `start` added,
    // and up to 8 more behind them; answers their end.
    static std::uint16_t* putPlaces(std::uint32_t bits, std::uint16_t start, std::uint16_t* to) {
        __m128i starts = _mm_set1_epi16(static_cast<short>(start));
        for (int k = 0; k < 32; k += 8) {
            const auto& places = bitsOfByte[bits >> k & 255];
            const __m128i added = _mm_load_si128(reinterpret_cast<const __m128i*>(places.data()));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_add_epi16(starts, added));
            starts = _mm_add_epi16(starts, _mm_set1_epi16(8));
            to += places[7];
        }
        return to;
    }
    void list(std::size_t n) {
        std::uint16_t* to = places_;
        for (std::size_t word = 0; word < wordCount_; ++word)
            to = putPlaces(words_[word], starts_[word], to);
        count_ = static_cast<std::size_t>(to - places_);
        if (count_ % 2 != 0) places_[count_++] = static_cast<std::uint16_t>(n);
    }

    std::uint64_t equalBefore_ = 0, markedBefore_ = 0;
    std::size_t count_ = 0, wordCount_ = 0;
    std::uint32_t words_[mostMarked / 32 + 1];
    std::uint16_t starts_[mostMarked / 32 + 1];
    // Marks of two repeats lie three places apart or more.
    std::uint16_t places_[mostMarked / 3 * 2 + 16];
};

template <class Vectors>
class PacketRun {
  public:
    PacketRun(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets)
        : bytes_(bytes), packets_(packets), n_(n) {}

    // Takes the repeats on whose marks `from` stands, as far as `to`. False: give up.
    bool repeats(const std::uint16_t* from, const std::uint16_t* to) {
        // A page is given up in its first half for having passed n / 2, then for coming near n.
        const std::uint16_t* middle = from;
        while (middle != to && endOf(middle) <= n_ / 2) middle += 2;
        if (!quickly(from, middle, std::min(n_ / 2, n_ - 129))) return false;
        for (; middle != to && input_ <= n_ / 2; middle += 2)
            if (!repeat(middle[0], endOf(middle))) return false;
        return quickly(middle, to, n_ - 129);
    }
    // What is left stands for itself.
    bool rest() {
        while (input_ < n_)
            if (!literal(std::min(longestLiteral, n_ - input_))) return false;
        return true;
    }
    [[nodiscard]] std::size_t output() const { return output_; }

  private:
    static std::size_t endOf(const std::uint16_t* edges) {
        return std::size_t{static_cast<std::uint16_t>(edges[1] - 1)} + 1;
    }
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
    // The marks from `third` up to `end`, packet by packet.
    bool repeat(std::size_t third, std::size_t end) {
        while (third >= input_ + longestLiteral)
            if (!literal(longestLiteral)) return false;
        // The run of literals may have reached into this one.
        third = std::max(third, input_ + 2);
        if (third >= end) return true;
        if (third > input_ + 2 && !literal(third - 2 - input_)) return false;
        while (end - input_ >= 3) {
            const std::size_t count = std::min(longestRepeat, end - input_);
            packets_[output_] = static_cast<std::uint8_t>(count);
            packets_[output_ + 1] = bytes_[input_];
            if (!advance(count, 2)) return false;
        }
        return true;
    }
    bool advance(std::size_t input, std::size_t output) {
        input_ += input;
        output_ += output;
        return (output_ <= n_ / 2 || input_ > n_ / 2) && n_ - output_ > 128;
    }

    // The same while the output may grow to `most`.
    bool quickly(const std::uint16_t* from, const std::uint16_t* to, std::size_t most) {
        for (; from != to; from += 2) {
            const std::size_t third = from[0], end = endOf(from);
            const std::size_t before = third - 2 - input_;
            const std::size_t count = end - third + 2;
            if (before >= longestLiteral - 2 || count > longestRepeat || n_ - input_ < 128) {
                if (!repeat(third, end)) return false;
                continue;
            }
            std::uint8_t* packet = packets_ + output_;
            *packet = static_cast<std::uint8_t>(128 + before);
            Vectors::copyUpTo128(bytes_ + input_, packet + 1, before);
            const std::size_t used = before + static_cast<std::size_t>(before != 0);
            packet[used] = static_cast<std::uint8_t>(count);
            packet[used + 1] = bytes_[third];
            output_ += used + 2;
            input_ = end;
            if (output_ > most) return false;
        }
        return true;
    }

    const std::uint8_t* bytes_;
    std::uint8_t* packets_;
    std::size_t n_;
    std::size_t input_ = 0, output_ = 0;
};

template <class Vectors>
std::size_t packetsBetween(const RepeatEdges<Vectors>& edges, const std::uint8_t* bytes,
                           std::size_t n, std::uint8_t* packets) {
    PacketRun<Vectors> run(bytes, n, packets);
    return run.repeats(edges.begin(), edges.end()) && run.rest() ? run.output() : n;
}

template <class Vectors>
std::size_t encodePackets(const std::uint8_t* bytes, std::size_t n, std::uint8_t* packets) {
    if (n <= 128) return n;
    if (n > mostMarked) return runLengthKernelsScalar.encode(bytes, n, packets);
    return packetsBetween(RepeatEdges<Vectors>(bytes, n), bytes, n, packets);
}

template <class Vectors>
std::size_t decodePackets(const std::uint8_t* packets, std::size_t stored, std::uint8_t* bytes,
                          std::size_t n) {
    const std::uint8_t* packet = packets;
    const std::uint8_t* const stop = packets + stored;
    std::uint8_t* to = bytes;
    std::uint8_t* const end = bytes + n;
    // While whole copies of a literal and of a repeat stay inside both buffers.
    while (stop - packet >= 131 && end - to >= 256) {
        const auto first = static_cast<std::ptrdiff_t>(*packet);
        // The place of the next header waits for this sum: a shift takes the least time.
        const std::ptrdiff_t isLiteral = (128 - first) >> (sizeof(first) * 8 - 1);
        const std::ptrdiff_t literal = (first - 128) & isLiteral;
        Vectors::copyUpTo128(packet + 1, to, static_cast<std::size_t>(literal));
        packet += (first - 127) & isLiteral;
        to += literal;
        const std::size_t second = *packet;
        if (second > 128) continue;
        Vectors::fillUpTo128(packet[1], to, second);
        packet += 2;
        to += second;
    }
    const auto left = static_cast<std::size_t>(stop - packet);
    const auto done = static_cast<std::size_t>(to - bytes);
    return done + runLengthKernelsScalar.decode(packet, left, to, n - done);
}

}  // namespace brushwork
