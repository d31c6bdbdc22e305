#include "brushwork/i_string.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <utility>

namespace brushwork::znString {
namespace {

TEST(IString, ConvertsNarrowTextAndTellsWhetherItWasClean) {
    bool ok = false;
    EXPECT_EQ(IString("K\xC3\xA4se", Conversion::Utf8, &ok).view(), u"K\u00E4se");
    EXPECT_TRUE(ok);
    EXPECT_EQ(IString("a\xE2\x82z\xFF", Conversion::Utf8, &ok).view(), u"a\uFFFDz\uFFFD");
    EXPECT_FALSE(ok);
    EXPECT_EQ(IString("\xEF\xBF\xBD", Conversion::Utf8, &ok).view(), u"\uFFFD");
    EXPECT_TRUE(ok) << "the replacement character itself is clean";
    ok = false;
    EXPECT_TRUE(IString(static_cast<const char*>(nullptr), Conversion::Utf8, &ok).isEmpty());
    EXPECT_TRUE(ok);
    ok = false;
    EXPECT_TRUE(IString(static_cast<const char*>(nullptr), Conversion::Locale, &ok).isEmpty());
    EXPECT_TRUE(ok);
    EXPECT_EQ(IString("\xFF", Conversion::Locale, &ok).view(), u"\u00FF");
}

TEST(IString, ByteOrderMark) {
    EXPECT_EQ(IString("\xEF\xBB\xBFx").view(), u"x");
    EXPECT_EQ(IString("\xEF\xBB\xBFx", Conversion::Utf8KeepingMark).view(), u"\uFEFFx");
    EXPECT_EQ(IString("\xEF\xBB\xBF\xEF\xBB\xBF").view(), u"\uFEFF") << "one mark alone";
    EXPECT_EQ(IString("x\xEF\xBB\xBF").view(), u"x\uFEFF");
}

TEST(IString, NarrowViewFollowsEveryChange) {
    IString text;
    EXPECT_STREQ(text.narrow(), "");
    text.append(u"\u00E4");
    EXPECT_STREQ(text.narrow(), "\xC3\xA4");
    text.append(u'b');
    EXPECT_STREQ(text.narrow(),
                 "\xC3\xA4"
                 "b");
    text.insert(0, u"x").erase(1, 1);
    EXPECT_STREQ(text.narrow(), "xb");
    text.replaceAll(u"b", u"cc");
    EXPECT_STREQ(text.narrow(), "xcc");
    text.format(u"%d", 7);
    EXPECT_STREQ(text.narrow(), "7");
    const IString copy(text);
    text = IString(u"new");
    EXPECT_STREQ(text.narrow(), "new");
    EXPECT_STREQ(copy.narrow(), "7");
    text.clear();
    EXPECT_STREQ(text.narrow(), "");
    const char16_t lone[] = {0xDC00, u'a', 0};
    EXPECT_STREQ(IString(lone).narrow(),
                 "\xEF\xBF\xBD"
                 "a");
}

TEST(IString, StringsOfBothWidthsMeetInTheBase) {
    CString narrow("\xC3\xA4");
    IString wide(u"\u20AC");
    String& base = wide;
    base.append(narrow);
    EXPECT_EQ(wide.view(), u"\u20AC\u00E4");
    base.append(wide);
    EXPECT_EQ(wide.view(), u"\u20AC\u00E4\u20AC\u00E4");
    static_cast<String&>(narrow).assignFrom(wide);
    EXPECT_EQ(narrow.view(), "\xE2\x82\xAC\xC3\xA4\xE2\x82\xAC\xC3\xA4");
    base.assignFrom(wide);
    EXPECT_EQ(wide.length(), 4U);
    EXPECT_EQ(base.lastIndex(), 3U);
    EXPECT_EQ(base.nullLength(), 0);
    EXPECT_EQ(static_cast<const char16_t*>(base.data())[4], u'\0');
    wide.clear();
    EXPECT_TRUE(base.isNull());
    EXPECT_EQ(base.lastIndex(), npos);
}

TEST(IString, MovedFromStringsAreEmptyAndUsable) {
    IString text(u"abc");
    const IString taken(std::move(text));
    EXPECT_EQ(taken.view(), u"abc");
    EXPECT_TRUE(text.isEmpty());  // NOLINT: what is tested
    EXPECT_STREQ(text.narrow(), "");
    text.append(u"x");
    EXPECT_EQ(text.view(), u"x");
}

// Against std::u16string, exceptions included.
TEST(IString, EditsLikeAStandardString) {
    constexpr std::uint32_t seed = 77;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    IString text;
    std::u16string model;
    for (int round = 0; round < 20000; ++round) {
        std::u16string piece;
        for (auto count = random() % 4; count > 0; --count)
            piece += static_cast<char16_t>(u'a' + random() % 3);
        const std::size_t position = random() % 24;
        const std::size_t count = random() % 5 ? random() % 6 : npos;
        const bool beyond = position > model.size();
        switch (random() % 6) {
            case 0:
                text.append(piece);
                model += piece;
                break;
            case 1:
                if (beyond) {
                    EXPECT_THROW(text.insert(position, piece), std::out_of_range);
                } else {
                    text.insert(position, piece);
                    model.insert(position, piece);
                }
                break;
            case 2:
                if (beyond) {
                    EXPECT_THROW(text.erase(position, count), std::out_of_range);
                } else {
                    text.erase(position, count);
                    model.erase(position, count);
                }
                break;
            case 3:
                if (beyond)
                    EXPECT_THROW((void)text.substring(position, count), std::out_of_range);
                else
                    EXPECT_EQ(text.substring(position, count).view(),
                              model.substr(position, count));
                break;
            case 4: EXPECT_EQ(text.find(piece, position), model.find(piece, position)); break;
            default: EXPECT_EQ(text.findLast(piece, count), model.rfind(piece, count)); break;
        }
        ASSERT_EQ(text.view(), model) << "round " << round;
    }
}

TEST(IString, ErrorsOfAProgrammerThrowTheTwoTexts) {
    IString text(u"abc");
    const auto messageOf = [](auto action) -> std::string {
        try {
            action();
        } catch (const std::logic_error& error) {
            return error.what();
        }
        return {};
    };
    EXPECT_EQ(messageOf([&] { (void)text.at(3); }), "invalid string position");
    EXPECT_EQ(messageOf([&] { text.insert(4, u""); }), "invalid string position");
    const std::size_t tooMany = std::u16string().max_size() - 2;
    EXPECT_EQ(messageOf([&] { text.append(std::u16string_view(u"", tooMany)); }),
              "string too long");
    EXPECT_EQ(messageOf([&] { text.insert(0, std::u16string_view(u"", tooMany)); }),
              "string too long");
    CString narrow("abc");
    EXPECT_EQ(messageOf([&] { narrow.erase(4); }), "invalid string position");
    EXPECT_EQ(messageOf([&] { narrow.append(std::string_view("", std::string().max_size())); }),
              "string too long");
    EXPECT_EQ(text.view(), u"abc");
}

TEST(IString, ComparesByUnit) {
    EXPECT_LT(IString(u"\U00010000").compare(u"\uFFFF"), 0) << "units, not characters";
    EXPECT_LT(IString(u"B").compare(u"a"), 0);
    EXPECT_GT(IString(u"B").compareNoCase(u"a"), 0);
    EXPECT_EQ(IString(u"AbC").compareNoCase(u"aBc"), 0);
    EXPECT_LT(IString(u"ab").compareNoCase(u"ABC"), 0);
    EXPECT_LT(IString(u"[").compareNoCase(u"A"), 0) << "folded to small letters";
    EXPECT_EQ(CString("_").compareNoCase("A"), -1);
    EXPECT_LT(CString("a").compare("\xC3"), 0) << "bytes have no sign";
    EXPECT_TRUE(IString(u"a") < IString(u"b") && IString(u"a") != IString(u"A"));
}

TEST(IString, TrimsSplitsAndReplaces) {
    EXPECT_EQ(IString(u" \t\r\na b\v\f ").trimmed().view(), u"a b");
    EXPECT_TRUE(IString(u" \n").trimmed().isEmpty());
    const auto tokens = IString(u";a,;bc;").tokens(u",;");
    ASSERT_EQ(tokens.size(), 2U);
    EXPECT_EQ(tokens[1].view(), u"bc");
    EXPECT_TRUE(IString(u",,").tokens(u",").empty());
    EXPECT_EQ(IString(u"aaa").replaceAll(u"aa", u"aaa").view(), u"aaaa");
    EXPECT_EQ(IString(u"abab").replaceAll(u"ab", u"").view(), u"");
    EXPECT_EQ(IString(u"ab").replaceAll(u"", u"x").view(), u"ab");
    IString own(u"ab");
    EXPECT_EQ(own.replaceAll(own.view().substr(1), own.view()).view(), u"aab");
    EXPECT_EQ(IString(u"aZ\U0001F600").upper().view(), u"AZ\U0001F600");
    EXPECT_EQ(IString(u"Az_").lower().view(), u"az_");
}

TEST(CString, FormatsWholeOrNotAtAll) {
    CString text("kept");
    EXPECT_FALSE(text.format("%s", ""));
    EXPECT_EQ(text.view(), "kept");
    EXPECT_TRUE(text.format("%s-%d-%s", text.c_str(), 5, std::string(3000, 'x').c_str()));
    EXPECT_EQ(text.view(), "kept-5-" + std::string(3000, 'x'));
    EXPECT_TRUE(text.format("ab%cd", 0));
    EXPECT_EQ(text.view(), "ab") << "the terminator ends the text";
}

}  // namespace
}  // namespace brushwork::znString
