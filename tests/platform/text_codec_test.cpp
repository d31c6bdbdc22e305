#include "platform/text_codec.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace brushwork::platform {
namespace {

// The model: every well-formed sequence is the encoding of a scalar value by arithmetic, so whether
// bytes begin one is asked of the list of values and of nothing else.
std::string encoded(std::uint32_t value) {
    const auto byte = [](std::uint32_t bits) { return static_cast<char>(bits); };
    if (value < 0x80) return {byte(value)};
    if (value < 0x800) return {byte(0xC0 + value / 64), byte(0x80 + value % 64)};
    if (value < 0x10000)
        return {byte(0xE0 + value / 4096), byte(0x80 + value / 64 % 64), byte(0x80 + value % 64)};
    return {byte(0xF0 + value / 262144), byte(0x80 + value / 4096 % 64),
            byte(0x80 + value / 64 % 64), byte(0x80 + value % 64)};
}

// Marks, by the number that up to three bytes form, what well-formed sequences begin with.
class Prefixes {
  public:
    Prefixes() : two_(1U << 16), three_(1U << 24) {
        for (std::uint32_t value = 0; value <= 0x10FFFF; ++value) {
            if (value >= 0xD800 && value <= 0xDFFF) continue;
            const std::string bytes = encoded(value);
            if (bytes.size() >= 2) one_[number(bytes, 1)] = true;
            if (bytes.size() >= 3) two_[number(bytes, 2)] = true;
            if (bytes.size() >= 4) three_[number(bytes, 3)] = true;
            if (bytes.size() == 1) whole1_[number(bytes, 1)] = true;
        }
    }
    // How long the maximal subpart or character at the start is, and whether it is a character.
    std::size_t pieceLength(std::string_view bytes, bool& whole) const {
        whole = whole1_[number(bytes, 1)];
        if (whole || !one_[number(bytes, 1)]) return 1;
        for (std::size_t length = 2; length <= bytes.size(); ++length) {
            if (isWhole(bytes.substr(0, length))) {
                whole = true;
                return length;
            }
            const bool goes = length == 2   ? two_[number(bytes, 2)]
                              : length == 3 ? three_[number(bytes, 3)]
                                            : false;
            if (!goes) return length - 1;
        }
        return bytes.size();
    }
    std::u16string decode(std::string_view bytes, bool& clean) const {
        std::u16string text;
        clean = true;
        while (!bytes.empty()) {
            bool whole = false;
            const std::size_t length = pieceLength(bytes, whole);
            clean = clean && whole;
            const std::uint32_t value = whole ? valueOf(bytes.substr(0, length)) : 0xFFFD;
            if (value >= 0x10000) {
                text += static_cast<char16_t>(0xD800 + (value - 0x10000) / 1024);
                text += static_cast<char16_t>(0xDC00 + (value - 0x10000) % 1024);
            } else {
                text += static_cast<char16_t>(value);
            }
            bytes.remove_prefix(length);
        }
        return text;
    }

  private:
    static std::uint32_t number(std::string_view bytes, std::size_t count) {
        std::uint32_t value = 0;
        for (const char byte : bytes.substr(0, count))
            value = value * 256 + static_cast<std::uint8_t>(byte);
        return value;
    }
    static std::uint32_t valueOf(std::string_view bytes) {
        static constexpr std::array<std::uint32_t, 5> leadBase = {0, 0, 0xC0, 0xE0, 0xF0};
        if (bytes.size() == 1) return static_cast<std::uint8_t>(bytes[0]);
        std::uint32_t value = static_cast<std::uint8_t>(bytes[0]) - leadBase[bytes.size()];
        for (const char byte : bytes.substr(1))
            value = value * 64 + (static_cast<std::uint8_t>(byte) - 0x80U);
        return value;
    }
    // Well-formed exactly if the value that the bytes would stand for encodes to them.
    static bool isWhole(std::string_view bytes) {
        if (bytes.size() > 4) return false;
        const std::uint32_t value = valueOf(bytes);
        return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF) && encoded(value) == bytes;
    }

    std::array<bool, 256> whole1_{}, one_{};
    std::vector<bool> two_, three_;
};

const Prefixes& prefixes() {
    static const Prefixes prefixes;
    return prefixes;
}

void expectLikeModel(std::string_view bytes) {
    bool clean = false, expectedClean = true;
    const std::u16string expected = prefixes().decode(bytes, expectedClean);
    const std::u16string got = fromUtf8(bytes, &clean);
    if (got == expected && clean == expectedClean) return;
    std::string shown;
    for (const char byte : bytes)
        shown += " " + std::to_string(static_cast<unsigned>(static_cast<std::uint8_t>(byte)));
    ADD_FAILURE() << "bytes" << shown << ", clean " << clean;
}

TEST(TextCodec, DecodesAllShortSequencesLikeTheModel) {
    std::array<char, 3> bytes{};
    for (std::uint32_t number = 0; number < 1U << 24; ++number) {
        bytes = {static_cast<char>(number >> 16), static_cast<char>(number >> 8),
                 static_cast<char>(number)};
        if (number < 256) expectLikeModel({&bytes[2], 1});
        if (number < 65536) expectLikeModel({&bytes[1], 2});
        // Beyond two ASCII bytes nothing new can begin.
        if (bytes[0] >= 0 && bytes[1] >= 0) continue;
        expectLikeModel({bytes.data(), 3});
        if (HasFailure()) return;
    }
}

TEST(TextCodec, DecodesRandomLongerSequencesLikeTheModel) {
    constexpr std::uint32_t seed = 20260107;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    // The bytes at which rules change, so that long sequences and their near misses are common.
    constexpr std::array<std::uint8_t, 24> edges = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0,
                                                    0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC,
                                                    0xED, 0xEE, 0xEF, 0xF0, 0xF3, 0xF4, 0xF5, 0xFF};
    for (int round = 0; round < 300000; ++round) {
        std::string bytes;
        for (auto count = random() % 12 + 4; count > 0; --count)
            bytes +=
                static_cast<char>(random() % 4 ? edges[random() % edges.size()] : random() % 256);
        expectLikeModel(bytes);
        if (HasFailure()) return;
    }
}

TEST(TextCodec, EveryCharacterComesBackFromARoundTrip) {
    for (std::uint32_t value = 0; value <= 0x10FFFF; ++value) {
        if (value >= 0xD800 && value <= 0xDFFF) continue;
        const std::string bytes = encoded(value);
        bool clean = false;
        ASSERT_EQ(toUtf8(fromUtf8(bytes, &clean)), bytes) << value;
        ASSERT_TRUE(clean) << value;
    }
}

TEST(TextCodec, LoneSurrogatesBecomeTheReplacementCharacter) {
    const std::string mark = "\xEF\xBF\xBD";
    for (std::uint32_t unit = 0xD800; unit <= 0xDFFF; ++unit)
        ASSERT_EQ(toUtf8(std::u16string(1, static_cast<char16_t>(unit))), mark) << unit;
    const std::u16string mixed = {u'a', 0xD83D, 0xD83D, 0xDE00, 0xDE00, u'z', 0xDBFF};
    EXPECT_EQ(toUtf8(mixed), "a" + mark + "\xF0\x9F\x98\x80" + mark + "z" + mark);
}

TEST(TextCodec, StopsAtATerminatorInsideASequence) {
    const std::array<char, 2> bytes = {'\xF0', '\0'};
    const char* at = bytes.data();
    bool clean = true;
    EXPECT_EQ(nextUtf8(at, nullptr, clean), replacementCharacter);
    EXPECT_EQ(at, bytes.data() + 1);
    EXPECT_FALSE(clean);
}

// Without a call of setlocale a process runs in the "C" locale, which knows ASCII alone.
TEST(TextCodec, LocaleTextSurvivesTheFirstLocale) {
    bool clean = false;
    const std::string_view plain("name.png\0x", 10);
    EXPECT_EQ(fromLocale(plain, &clean), std::u16string_view(u"name.png\0x", 10));
    EXPECT_TRUE(clean);
    // Bytes that no encoding explains come as one unit each.
    EXPECT_EQ(fromLocale("a\xFF\x80z"), u"a\u00FF\u0080z");
    if constexpr (std::filesystem::path::preferred_separator != '/') return;
    EXPECT_EQ(fromLocale("K\xC3\xA4se \xF0\x9F\x98\x80", &clean), u"K\u00E4se \U0001F600");
    EXPECT_TRUE(clean);
    EXPECT_EQ(fromLocale("K\xC3 ", &clean), u"K\u00C3 ");
    EXPECT_FALSE(clean);
}

}  // namespace
}  // namespace brushwork::platform
