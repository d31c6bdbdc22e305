#include "platform/argument_quoting.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "support/test_seed.h"

using brushwork::platform::commandLine;
using brushwork::platform::quoteArgument;

namespace {

// What `""` inside quotes means differs between splitters and from release to release.
enum class DoubledMark {
    Separate,         // two marks: close and open
    LiteralAndStay,   // one literal mark, the stretch goes on
    LiteralAndLeave,  // one literal mark, the stretch ends
};

// The receiving side, written from the rules rather than from the quoting code.
std::vector<std::u16string> split(const std::u16string& line, DoubledMark doubled) {
    std::vector<std::u16string> arguments;
    std::size_t at = 0;
    const auto more = [&] { return at < line.size(); };
    const auto isBlank = [&] { return line[at] == u' ' || line[at] == u'\t'; };

    std::u16string name;
    const bool quotedName = more() && line[at] == u'"';
    if (quotedName) ++at;
    while (more() && (quotedName ? line[at] != u'"' : line[at] > u' ')) name += line[at++];
    if (quotedName) ++at;
    arguments.push_back(name);

    for (;;) {
        while (more() && isBlank()) ++at;
        if (!more()) return arguments;
        std::u16string argument;
        bool inside = false;
        while (more() && (inside || !isBlank())) {
            std::size_t backslashes = 0;
            while (more() && line[at] == u'\\') ++backslashes, ++at;
            if (!more() || line[at] != u'"') {
                argument.append(backslashes, u'\\');
                if (more() && (inside || !isBlank())) argument += line[at++];
                continue;
            }
            argument.append(backslashes / 2, u'\\');
            ++at;
            if (backslashes % 2 == 1) {
                argument += u'"';
            } else if (inside && doubled != DoubledMark::Separate && more() && line[at] == u'"') {
                argument += u'"';
                ++at;
                inside = doubled == DoubledMark::LiteralAndStay;
            } else {
                inside = !inside;
            }
        }
        arguments.push_back(argument);
    }
}

void expectRoundTrip(const std::u16string& program, const std::vector<std::u16string>& arguments) {
    std::vector<std::u16string> expected{program};
    expected.insert(expected.end(), arguments.begin(), arguments.end());
    const std::u16string line = commandLine(program, arguments);
    for (const DoubledMark doubled :
         {DoubledMark::Separate, DoubledMark::LiteralAndStay, DoubledMark::LiteralAndLeave})
        ASSERT_EQ(split(line, doubled), expected) << testing::PrintToString(line);
}

TEST(ArgumentQuoting, ReferenceSplitterFollowsThePublishedExamples) {
    const auto arguments = [](const char16_t* tail) {
        auto all = split(std::u16string(u"p ") + tail, DoubledMark::Separate);
        all.erase(all.begin());
        return all;
    };
    using Texts = std::vector<std::u16string>;
    EXPECT_EQ(arguments(u"\"a b c\" d e"), (Texts{u"a b c", u"d", u"e"}));
    EXPECT_EQ(arguments(u"\"ab\\\"c\" \"\\\\\" d"), (Texts{u"ab\"c", u"\\", u"d"}));
    EXPECT_EQ(arguments(u"a\\\\\\b d\"e f\"g h"), (Texts{u"a\\\\\\b", u"de fg", u"h"}));
    EXPECT_EQ(arguments(u"a\\\\\\\"b c d"), (Texts{u"a\\\"b", u"c", u"d"}));
    EXPECT_EQ(arguments(u"a\\\\\\\\\"b c\" d e"), (Texts{u"a\\\\b c", u"d", u"e"}));
}

TEST(ArgumentQuoting, ExactForms) {
    EXPECT_EQ(quoteArgument(u"/FILE"), u"/FILE");
    EXPECT_EQ(quoteArgument(u"C:\\dir\\"), u"C:\\dir\\");
    EXPECT_EQ(quoteArgument(u""), u"\"\"");
    EXPECT_EQ(quoteArgument(u"C:\\my dir\\"), u"\"C:\\my dir\\\\\"");
    EXPECT_EQ(quoteArgument(u"\\\""), u"\"\\\\\\\"\"");
    EXPECT_EQ(commandLine(u"C:\\a b\\x.exe", {u"/file", u"C:\\t\\KVR 1.tmp"}),
              u"\"C:\\a b\\x.exe\" /file \"C:\\t\\KVR 1.tmp\"");
}

TEST(ArgumentQuoting, RefusesWhatNoLineCanSay) {
    EXPECT_EQ(commandLine(u"a\"b", {}), u"");
    EXPECT_EQ(commandLine(std::u16string(u"a\0b", 3), {}), u"");
    EXPECT_EQ(commandLine(u"a", {u"x", std::u16string(u"y\0", 2)}), u"");
}

TEST(ArgumentQuoting, EveryShortArgumentSplitsBackIntoItself) {
    const std::u16string units = u"\\\" \ta";
    std::vector<std::u16string> texts{u""};
    for (std::size_t first = 0, length = 1; length <= 6; ++length)
        for (const std::size_t last = texts.size(); first < last; ++first)
            for (const char16_t unit : units) texts.push_back(texts[first] + unit);
    ASSERT_EQ(texts.size(), 19531U);
    for (const auto& text : texts) expectRoundTrip(u"C:\\p\\", {u"\\", text, text, u"z"});
}

TEST(ArgumentQuoting, RandomLines) {
    const std::uint32_t seed = brushwork::test::testSeed();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::u16string units = u"\\\\\\\"\" \t\n\r\va\u00e9\u6f22\xd83d'^%&=/;";
    const auto below = [&](std::size_t bound) { return random() % bound; };
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::u16string> arguments(below(5));
        for (auto& argument : arguments)
            for (std::size_t left = below(12); left > 0; --left)
                argument += units[below(units.size())];
        expectRoundTrip(u"C:\\dir with blank\\tool.exe", arguments);
    }
}

}  // namespace
