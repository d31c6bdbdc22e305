#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <type_traits>

#include "brushwork/i_string.h"
#include "foundation/text/wide_printf.h"

namespace brushwork::znString {
namespace {

template <class... Arguments>
std::string formatted(const char16_t* pattern, Arguments... arguments) {
    IString text(u"<kept>");
    const bool done = text.format(pattern, arguments...);
    EXPECT_EQ(done, text.view() != u"<kept>");
    return text.toUtf8();
}

TEST(IStringFormat, TextOfBothWidths) {
    const char16_t* wide = u"w\u00E4";
    const char* narrow = "n\xC3\xA4";
    EXPECT_EQ(
        formatted(u"%s %S %ls %hs %ws %hS %lS", wide, narrow, wide, narrow, wide, narrow, wide),
        "w\xC3\xA4 n\xC3\xA4 w\xC3\xA4 n\xC3\xA4 w\xC3\xA4 n\xC3\xA4 w\xC3\xA4");
    EXPECT_EQ(formatted(u"%c%C%lc%hc", u'\u00E4', 'b', u'\u20AC', 'd'),
              "\xC3\xA4"
              "b\xE2\x82\xAC"
              "d");
    IString text;
    EXPECT_TRUE(text.format("\xC3\xA4 %s %S", wide, narrow)) << "a narrow pattern is widened";
    EXPECT_EQ(text.view(), u"\u00E4 w\u00E4 n\u00E4");
    EXPECT_EQ(formatted(u"[%5s|%-5s|%.1s|%4.1S]", u"ab", u"ab", u"ab", "\xC3\xA4z"),
              "[   ab|ab   |a|   \xC3\xA4]");
    EXPECT_EQ(formatted(u"%s%hs", static_cast<const char16_t*>(nullptr),
                        static_cast<const char*>(nullptr)),
              "(null)(null)");
}

// With a precision a text needs no terminator; the sanitizer watches the bytes behind these.
TEST(IStringFormat, PrecisionReadsNoFurtherAndKeepsPairs) {
    const std::array<char, 2> narrow = {'a', 'b'};
    const std::array<char16_t, 2> wide = {u'c', u'd'};
    EXPECT_EQ(formatted(u"%.2S%.2s", narrow.data(), wide.data()), "abcd");
    EXPECT_EQ(formatted(u"[%.2s|%.3s]", u"a\U0001F600", u"a\U0001F600"), "[a|a\xF0\x9F\x98\x80]");
    EXPECT_EQ(formatted(u"[%.2S|%.3S]", "a\xF0\x9F\x98\x80", "a\xF0\x9F\x98\x80"),
              "[a|a\xF0\x9F\x98\x80]");
    EXPECT_EQ(formatted(u"[%S]", "a\xF0"), "[a\xEF\xBF\xBD]") << "the terminator stops a sequence";
}

TEST(IStringFormat, LongResultsComeOutWhole) {
    for (const std::size_t length : {1U, 254U, 255U, 256U, 257U, 1279U, 1280U, 1281U, 100000U}) {
        const std::u16string piece(length, u'x');
        IString text;
        ASSERT_TRUE(text.format(u"%s%d", piece.c_str(), 7)) << length;
        EXPECT_TRUE(text.view() == piece + u"7") << length;
        ASSERT_TRUE(text.format(u"%*d", static_cast<int>(length), 3));
        EXPECT_EQ(text.length(), length);
    }
}

TEST(IStringFormat, TellsHowMuchItNeeds) {
    std::array<char16_t, 5> few = {u'?', u'?', u'?', u'?', u'?'};
    const auto print = [&few](const char16_t* pattern, ...) {
        std::va_list arguments;
        va_start(arguments, pattern);
        const std::uint64_t needed = wideVprintf(std::span(few).first(4), pattern, arguments);
        va_end(arguments);
        return needed;
    };
    EXPECT_EQ(print(u"%s", u"abc"), 4U);
    EXPECT_EQ(few, (std::array<char16_t, 5>{u'a', u'b', u'c', 0, u'?'}));
    EXPECT_EQ(print(u"%s", u"dcba"), 5U);
    EXPECT_EQ(few, (std::array<char16_t, 5>{u'd', u'c', u'b', u'a', u'?'}));
    EXPECT_EQ(print(u"%2000000000s", u"x"), 2000000001U);
    EXPECT_EQ(print(u"%2147483646s", u"x"), mostFormattedUnits);
    EXPECT_EQ(print(u"%2147483647s", u"x"), 0U);
    EXPECT_EQ(print(u"%2000000000s%2000000000s", u"x", u"x"), 0U);
}

TEST(IStringFormat, FailureAndNothingLeaveTheTextAlone) {
    int count = 0;
    IString text(u"kept");
    EXPECT_FALSE(text.format(u""));
    EXPECT_FALSE(text.format(u"%s", u""));
    EXPECT_FALSE(text.format(u"a%n", &count));
    for (const char16_t* pattern : {u"50%", u"%y", u"%-", u"%l", u"%1$d", u"%.", u"%99999999999d"})
        EXPECT_FALSE(text.format(pattern, 1, 2)) << IString(pattern).narrow();
    EXPECT_FALSE(text.format(u"%*d", std::numeric_limits<int>::min(), 1));
    EXPECT_FALSE(text.format(static_cast<const char16_t*>(nullptr)));
    EXPECT_FALSE(text.format(static_cast<const char*>(nullptr)));
    EXPECT_EQ(text.view(), u"kept");
    EXPECT_TRUE(text.format(u"a%cb", 0));
    EXPECT_EQ(text.view(), u"a") << "the terminator ends the text";
    EXPECT_TRUE(text.format(u"%s%s", text.c_str(), text.narrow() ? u"b" : u""));
    EXPECT_EQ(text.view(), u"ab") << "the text may be its own argument";
}

TEST(IStringFormat, PointersAndPercent) {
    void* pointer = reinterpret_cast<void*>(std::uintptr_t{0xBEEF});
    const std::string zeros(2 * sizeof pointer - 4, '0');
    EXPECT_EQ(formatted(u"%p 100%%", pointer), zeros + "BEEF 100%");
}

template <class Number>
const char* modifierOf(std::mt19937& random) {
    if constexpr (std::is_floating_point_v<Number>) return "";
    if constexpr (sizeof(Number) == sizeof(int)) {
        constexpr std::array<const char*, 4> all = {"", "h", "hh", "I32"};
        return all[random() % all.size()];
    }
    constexpr std::array<const char*, 3> all = {"ll", "j", "I64"};
    return all[random() % all.size()];
}

// One conversion with random flags, width, precision and modifier, beside the C runtime's.
template <class Number>
void compareOne(std::mt19937& random, const char* letters, Number value) {
    std::string flags = "%";
    for (const char flag : {'-', '+', ' ', '0', '#'})
        if (random() % 3 == 0) flags += flag;
    const char letter = letters[random() % std::char_traits<char>::length(letters)];
    const std::string modifier = modifierOf<Number>(random);
    const auto star = random() % 3;
    const int width = static_cast<int>(random() % 40) - 8;
    const int precision = static_cast<int>(random() % 24) - 4;
    std::string size;
    if (star == 1) size = std::to_string(width < 0 ? 0 : width);
    if (star == 1 && precision >= 0) size += "." + std::to_string(precision);
    if (star == 2) size = "*.*";
    const bool plainHash = letter == 'd' || letter == 'i' || letter == 'u';
    if (plainHash) std::erase(flags, '#');  // has no meaning there
    const std::string own = flags + size + modifier + letter;
    const std::string theirModifier = modifier == "I32" ? "" : modifier == "I64" ? "ll" : modifier;
    const std::string theirs = flags + size + theirModifier + letter;
    std::array<char, 600> expected;
    IString got;
    const IString pattern((own + "|").c_str());
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    if (star == 2) {
        std::snprintf(expected.data(), expected.size(), (theirs + "|").c_str(), width, precision,
                      value);
        ASSERT_TRUE(got.format(pattern.c_str(), width, precision, value)) << own;
    } else {
        std::snprintf(expected.data(), expected.size(), (theirs + "|").c_str(), value);
        ASSERT_TRUE(got.format(pattern.c_str(), value)) << own;
    }
#pragma GCC diagnostic pop
    ASSERT_EQ(got.toUtf8(), expected.data()) << own << " of " << value;
}

TEST(IStringFormat, NumbersAreThoseOfTheRuntime) {
    constexpr std::uint32_t seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::mt19937_64 wide(seed);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr std::array<double, 8> special = {
        0.0, -0.0, 1.0, 0.5, 1e300, 5e-324, infinity, std::numeric_limits<double>::quiet_NaN()};
    for (int round = 0; round < 40000 && !::testing::Test::HasFatalFailure(); ++round) {
        const auto shift = random() % 64;
        compareOne(random, "di", static_cast<int>(random() >> shift % 32));
        compareOne(random, "uoxX", static_cast<unsigned>(random() >> shift % 32));
        compareOne(random, "di", static_cast<long long>(wide() >> shift));
        compareOne(random, "uoxX", static_cast<unsigned long long>(wide() >> shift));
        const double value =
            random() % 4 ? (static_cast<double>(random()) - 2e9) * (random() % 2 ? 1e-12 : 1.0 / 3)
                         : special[random() % special.size()];
        compareOne(random, "fFeEgGaA", value);
    }
}

TEST(IStringFormat, SizesOfArguments) {
    EXPECT_EQ(formatted(u"%ld %lu %zd %zu %td %Iu", -5L, 5UL, std::ptrdiff_t{-6}, std::size_t{6},
                        std::ptrdiff_t{-7}, std::size_t{8}),
              "-5 5 -6 6 -7 8");
    EXPECT_EQ(formatted(u"%d%I64d%d%s", 1, std::int64_t{-1} << 40, 2, u"!"), "1-10995116277762!");
    EXPECT_EQ(formatted(u"%Lg", 2.5L), "2.5");
    EXPECT_EQ(formatted(u"%.300f", 0.5), "0.5" + std::string(299, '0'));
}

}  // namespace
}  // namespace brushwork::znString
