#include "image/swap/run_length.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "image/filter/kernel_recipe.h"

namespace brushwork {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Packets by the rule for a whole packet: from `start`, the nearest third equal byte within 126
// decides. Knows no giving up but as a list of (input, output) sums.
struct NaivePackets {
    Bytes packets;
    std::vector<std::pair<std::size_t, std::size_t>> sums;

    explicit NaivePackets(const Bytes& in) {
        for (std::size_t start = 0; start < in.size();) {
            std::size_t third = start + 2;
            while (third < in.size() && third <= start + 126 &&
                   !(in[third] == in[third - 1] && in[third] == in[third - 2]))
                ++third;
            if (third >= in.size() || third > start + 126) {
                start = literal(in, start, std::min(in.size(), start + 127));
                continue;
            }
            if (third > start + 2) start = literal(in, start, third - 2);
            std::size_t end = start;
            while (end < in.size() && end < start + 128 && in[end] == in[start]) ++end;
            packets.push_back(static_cast<std::uint8_t>(end - start));
            packets.push_back(in[start]);
            start = end;
            sums.emplace_back(start, packets.size());
        }
    }
    std::size_t literal(const Bytes& in, std::size_t from, std::size_t to) {
        packets.push_back(static_cast<std::uint8_t>(128 + to - from));
        for (std::size_t i = from; i < to; ++i) packets.push_back(in[i]);
        sums.emplace_back(to, packets.size());
        return to;
    }
    [[nodiscard]] bool tooLong(std::size_t n) const {
        return std::any_of(sums.begin(), sums.end(), [n](const auto& sum) {
            return (2 * sum.second > n && 2 * sum.first <= n) || sum.second + 128 >= n;
        });
    }
};

// Stops at a packet that isn't whole.
Bytes naiveDecoded(const Bytes& packets, std::size_t most) {
    Bytes out;
    std::size_t i = 0;
    while (i < packets.size() && out.size() < most) {
        const unsigned c = packets[i];
        const std::size_t length = c > 128 ? c - 127 : 2;
        if (i + length > packets.size()) break;
        for (unsigned k = 0; k < (c > 128 ? c - 128 : c) && out.size() < most; ++k)
            out.push_back(packets[c > 128 ? i + 1 + k : i + 1]);
        i += length;
    }
    return out;
}

// Runs of lengths near the limits, noise between them as often as `noise` in 8 says.
Bytes runs(test::Random& random, std::size_t n, unsigned noise) {
    static constexpr std::size_t lengths[] = {1,   2,   3,   4,   61,  62,  63,  64,  65,  66,
                                              124, 125, 126, 127, 128, 129, 130, 131, 192, 255,
                                              256, 257, 258, 259, 383, 384, 385, 386, 387};
    Bytes out;
    while (out.size() < n) {
        const std::size_t length = lengths[random() % std::size(lengths)];
        const std::uint8_t value = test::edgyByte(random);
        const bool noisy = random() % 8 < noise;
        for (std::size_t k = 0; k < length; ++k)
            out.push_back(noisy ? static_cast<std::uint8_t>(random() >> 8) : value);
    }
    out.resize(n);
    return out;
}

std::vector<VectorLevel> allLevels() {
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    return levels;
}

struct Encoded {
    std::size_t size;
    Bytes packets;  // empty if given up
};
Encoded encodedAt(VectorLevel level, const Bytes& in, std::size_t misalignment,
                  const std::string& what) {
    test::GuardedBytes from(in.size(), misalignment);
    std::copy(in.begin(), in.end(), from.data());
    test::GuardedBytes to(in.size(), misalignment / 2);
    const std::size_t size = runLengthKernels(level).encode(from.data(), in.size(), to.data());
    EXPECT_EQ(lastKernelForm(), level) << what;
    EXPECT_TRUE(to.guardsIntact() && from.guardsIntact()) << what;
    EXPECT_TRUE(from.bytes() == in) << what;
    EXPECT_LE(size, in.size()) << what;
    if (size >= in.size()) return {size, {}};
    return {size, Bytes(to.data(), to.data() + size)};
}

Bytes decodedAt(VectorLevel level, const Bytes& packets, std::size_t n, std::size_t misalignment,
                const std::string& what) {
    test::GuardedBytes from(packets.size(), misalignment);
    std::copy(packets.begin(), packets.end(), from.data());
    test::GuardedBytes to(n, misalignment / 2);
    const std::size_t done =
        runLengthKernels(level).decode(from.data(), packets.size(), to.data(), n);
    EXPECT_EQ(lastKernelForm(), level) << what;
    EXPECT_TRUE(to.guardsIntact()) << what;
    EXPECT_LE(done, n) << what;
    return Bytes(to.data(), to.data() + std::min(done, n));
}

TEST(RunLength, PacketsAreTheseBytes) {
    const auto packetsOf = [](Bytes start) {
        // Far from giving up, and the rest ends in whole repeats of a byte of its own.
        const std::size_t used = start.size();
        start.resize(used + 128 * 10, 0xEE);
        Encoded encoded = encodedAt(VectorLevel::Scalar, start, 0, "");
        EXPECT_GE(encoded.packets.size(), 20U);
        encoded.packets.resize(encoded.packets.size() -
                               std::min<std::size_t>(20, encoded.packets.size()));
        return encoded.packets;
    };
    const auto numbers = [](int from, int count) {
        Bytes out;
        for (int i = 0; i < count; ++i) out.push_back(static_cast<std::uint8_t>(from + i));
        return out;
    };
    const auto joined = [](std::initializer_list<Bytes> parts) {
        Bytes out;
        for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
        return out;
    };
    EXPECT_EQ(packetsOf({7, 7, 7}), (Bytes{3, 7}));
    EXPECT_EQ(packetsOf({7, 7, 8, 8}), (Bytes{132, 7, 7, 8, 8}));
    EXPECT_EQ(packetsOf({1, 7, 7, 7, 7}), (Bytes{129, 1, 4, 7}));
    EXPECT_EQ(packetsOf(Bytes(128, 7)), (Bytes{128, 7}));
    EXPECT_EQ(packetsOf(Bytes(130, 7)), (Bytes{128, 7, 130, 7, 7}));
    EXPECT_EQ(packetsOf(Bytes(131, 7)), (Bytes{128, 7, 3, 7}));
    // The 127th byte is the third equal one: the repeat comes first.
    EXPECT_EQ(packetsOf(joined({numbers(1, 124), {200, 200, 200}})),
              joined({{128 + 124}, numbers(1, 124), {3, 200}}));
    // The 128th is: the run before it was written, with two of them in it.
    EXPECT_EQ(packetsOf(joined({numbers(1, 125), {200, 200, 200}})),
              joined({{255}, numbers(1, 125), {200, 200, 129, 200}}));
    EXPECT_EQ(packetsOf(joined({numbers(1, 126), {200, 200, 200, 200}})),
              joined({{255}, numbers(1, 126), {200, 3, 200}}));
}

TEST(RunLength, GivesUpWhereTooLittleIsSaved) {
    for (const VectorLevel level : allLevels()) {
        const std::string what = vectorLevelName(level);
        // Noise, then a part that packs well; and the other way round.
        for (const bool noiseFirst : {true, false}) {
            for (const std::size_t noise : {8100U, 8191U, 8192U, 8193U, 8256U, 16000U}) {
                Bytes in(16384, 9);
                const std::size_t from = noiseFirst ? 0 : in.size() - noise;
                for (std::size_t i = 0; i < noise; ++i)
                    in[from + i] = static_cast<std::uint8_t>(i * 7 + i / 256);
                const NaivePackets naive(in);
                const Encoded encoded = encodedAt(level, in, 0, what);
                EXPECT_EQ(encoded.size == in.size(), naive.tooLong(in.size())) << noise << what;
                EXPECT_EQ(encoded.packets.empty(), encoded.size == in.size());
            }
        }
        for (const std::size_t n : {0U, 1U, 2U, 127U, 128U, 129U, 130U, 131U, 132U})
            EXPECT_EQ(encodedAt(level, Bytes(n, 5), 0, what).size, n) << what;
        EXPECT_EQ(encodedAt(level, Bytes(133, 5), 0, what).packets,
                  NaivePackets(Bytes(133, 5)).packets);
    }
}

TEST(RunLength, EveryFormGivesThePacketsOfTheRule) {
    constexpr unsigned seed = 77;
    test::Random random(seed);
    int packed = 0, raw = 0;
    for (int round = 0; round < 700; ++round) {
        const std::size_t n = round < 300       ? 129 + static_cast<std::size_t>(round)
                              : round % 16 == 0 ? 65536
                                                : 129 + random() % 9000;
        const unsigned noise = static_cast<unsigned>(random() % 6);
        const Bytes in = runs(random, n, noise);
        const NaivePackets naive(in);
        const bool tooLong = naive.tooLong(n);
        ++(tooLong ? raw : packed);
        for (const VectorLevel level : allLevels()) {
            const std::string what = std::string(vectorLevelName(level)) + " seed " +
                                     std::to_string(seed) + " round " + std::to_string(round) +
                                     " n " + std::to_string(n);
            const std::size_t misalignment = random() % 32;
            const Encoded encoded = encodedAt(level, in, misalignment, what);
            ASSERT_EQ(encoded.size, tooLong ? n : naive.packets.size()) << what;
            if (tooLong) continue;
            ASSERT_TRUE(encoded.packets == naive.packets) << what;
            ASSERT_TRUE(decodedAt(level, encoded.packets, n, misalignment, what) == in) << what;
        }
    }
    EXPECT_GT(packed, 100);
    EXPECT_GT(raw, 50);
}

// Any bytes: cut packets, repeats of 0, more than the page holds.
TEST(RunLength, DamagedPacketsStayInside) {
    test::Random random(5);
    for (int round = 0; round < 2000; ++round) {
        Bytes packets(random() % 700);
        for (std::uint8_t& byte : packets)
            byte = random() % 3 ? test::edgyByte(random) : static_cast<std::uint8_t>(random() % 6);
        const std::size_t n = random() % 4 ? random() % 3000 : random() % 200;
        const Bytes expected = naiveDecoded(packets, n);
        for (const VectorLevel level : allLevels())
            ASSERT_TRUE(decodedAt(level, packets, n, random() % 32, "") == expected)
                << vectorLevelName(level) << " round " << round << " n " << n;
    }
}

// Planes that run into each other and sizes with and without whole vectors.
TEST(RunLength, PagesPackAsTheirPlanesDo) {
    test::Random random(31);
    for (int round = 0; round < 400; ++round) {
        const std::size_t n = round % 20 == 0  ? 65536
                              : round % 20 < 4 ? 65536 + 256
                              : round % 2 == 0 ? 256 * (1 + random() % 40)
                                               : 4 * (random() % 2000);
        const Bytes stream = runs(random, n, static_cast<unsigned>(random() % 6));
        test::GuardedBytes pixels(n, random() % 32);
        runLengthKernelsScalar.joinPlanes(stream.data(), n / 4, pixels.data());
        Bytes expected(n);
        const std::size_t size = runLengthKernelsScalar.encode(stream.data(), n, expected.data());
        expected.resize(size < n ? size : 0);
        for (const VectorLevel level : allLevels()) {
            test::GuardedBytes planes(n, random() % 32), packets(n, random() % 32);
            ASSERT_EQ(runLengthKernels(level).encodePlanes(pixels.data(), n, planes.data(),
                                                           packets.data()),
                      size)
                << vectorLevelName(level) << " round " << round << " n " << n;
            // No page is larger.
            EXPECT_EQ(lastKernelForm(), n > 65536 ? VectorLevel::Scalar : level);
            ASSERT_TRUE(planes.bytes() == stream && planes.guardsIntact());
            ASSERT_TRUE(packets.guardsIntact() &&
                        std::equal(expected.begin(), expected.end(), packets.data()))
                << vectorLevelName(level) << " round " << round << " n " << n;
        }
    }
}

TEST(RunLength, PlanesOfEveryForm) {
    test::Random random(8);
    for (const VectorLevel level : allLevels())
        for (std::size_t count = 0; count < 150; ++count) {
            test::GuardedBytes pixels(count * 4, random() % 32);
            pixels.fill(random);
            test::GuardedBytes planes(count * 4, random() % 32), back(count * 4, random() % 32);
            const RunLengthKernels& kernels = runLengthKernels(level);
            kernels.splitPlanes(pixels.data(), count, planes.data());
            EXPECT_EQ(lastKernelForm(), level);
            for (std::size_t i = 0; i < 4 * count; ++i)
                ASSERT_EQ(planes.data()[i % 4 * count + i / 4], pixels.data()[i])
                    << vectorLevelName(level) << " count " << count << " byte " << i;
            kernels.joinPlanes(planes.data(), count, back.data());
            EXPECT_GE(lastKernelForm(), std::min(level, VectorLevel::Sse2));
            ASSERT_TRUE(back.bytes() == pixels.bytes()) << vectorLevelName(level) << count;
            ASSERT_TRUE(planes.guardsIntact() && back.guardsIntact());
        }
}

}  // namespace
}  // namespace brushwork
