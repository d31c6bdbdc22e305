#include "brushwork/filename.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/file_calls.h"
#include "support/test_seed.h"

namespace brushwork::znOS {
namespace {

using znString::CString;
using znString::IString;

std::string normal(std::u16string_view path, char16_t separator) {
    return Filename(IString(path), separator).path().toUtf8();
}

struct PathCase {
    const char16_t* given;
    const char* expected;
};

TEST(Filename, NormalisesWithBackslash) {
    const PathCase cases[] = {
        {u"", ""},
        {u"\\", "\\"},
        {u"\\\\", "\\"},
        {u"\\\\\\", "\\"},
        {u"C:\\", "C:\\"},
        {u"C:\\\\", "C:\\"},
        {u"C:/", "C:\\"},
        {u"C:\\dir\\", "C:\\dir"},
        {u"C:", "C:"},
        {u"a//b", "a\\b"},
        {u"a/\\/b", "a\\b"},
        {u"\\\\\\server", "\\\\server"},
        {u"\\\\server\\", "\\\\server\\"},
        {u"\\\\server\\\\", "\\\\server\\"},
        {u"//server/share//", "\\\\server\\share"},
        {u"a\\\\\\\\", "a"},
        {u"a\\..\\b", "b"},
        {u"..\\..\\b", "..\\..\\b"},
        {u".\\..\\b", "..\\b"},
        {u".\\..\\..\\b", "..\\..\\b"},
        {u"C:\\a\\b\\..\\c", "C:\\a\\c"},
        {u"C:\\a\\..\\..\\c", "c"},
        {u"C:\\..\\c", "c"},
        {u"C:..\\c", "C:..\\c"},
        {u"a\\..", "a\\.."},
        {u"a\\b\\..\\", "a\\b\\.."},
        {u"a\\b\\..\\..\\c", "c"},
        {u"a\\..\\..\\..\\c", "..\\..\\c"},
        // Behind a step that stays, nothing is collapsed any more.
        {u"..\\..\\x\\..\\b", "..\\..\\x\\..\\b"},
        {u"..\\x\\..\\b", "..\\b"},
        {u"\\..\\b", "b"},
        {u"\\a\\..\\b", "\\b"},
        {u"\\\\..\\", "\\"},
        {u"\\\\server\\..\\b", "\\\\b"},
        {u"a...\\b", "a...\\b"},
        {u"a\\...\\b", "a\\...\\b"},
    };
    for (const PathCase& c : cases) EXPECT_EQ(normal(c.given, u'\\'), c.expected) << c.expected;
}

TEST(Filename, NormalisesWithSlash) {
    const PathCase cases[] = {
        {u"/", "/"},
        {u"//", "/"},
        {u"/tmp/", "/tmp"},
        {u"///tmp", "//tmp"},
        {u"C:\\", "C:/"},
        {u"a\\b", "a/b"},
        {u"//server/", "//server/"},
        {u"/a/../b", "/b"},
        {u"/a/../../b", "b"},
        {u"./../b", "../b"},
        {u"a/../../b", "../b"},
        {u"/a/./b", "/a/./b"},
    };
    for (const PathCase& c : cases) EXPECT_EQ(normal(c.given, u'/'), c.expected) << c.expected;
}

// The four steps written down one deletion at a time.
std::u16string slowlyNormal(std::u16string path, char16_t separator) {
    const std::u16string one(1, separator);
    for (char16_t& unit : path)
        if (unit == u'/' || unit == u'\\') unit = separator;
    while (true) {
        const std::size_t pair = path.find(one + one, path.size() > 1 ? 1 : 0);
        if (pair == path.npos) break;
        path.erase(pair, 1);
    }
    while (path.size() > 1 && path.back() == separator) {
        if (path.size() == 3 && path[1] == u':') break;
        if (path.size() > 2 && path.substr(0, 2) == one + one &&
            path.find(separator, 2) == path.rfind(separator))
            break;
        path.erase(path.size() - 1);
    }
    while (true) {
        const std::size_t step = path.find(one + u".." + one);
        if (step == path.npos) return path;
        const std::u16string head = path.substr(0, step);
        const std::u16string tail = path.substr(step + 4);
        const std::size_t last = head.rfind(separator);
        if (last != head.npos) {
            path = head.substr(0, last + 1) + tail;
        } else if (head == u"..") {
            return path;
        } else if (head == u".") {
            path = u".." + one + tail;
        } else {
            path = tail;
        }
    }
}

TEST(Filename, AgreesWithTheStepsDoneOneByOne) {
    const auto seed = brushwork::test::testSeed();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    constexpr std::u16string_view pieces[] = {u"/", u"\\", u"/../", u"\\..\\", u"..", u".",
                                              u"a", u":",  u"/./",  u"C:\\",   u"//", u"b"};
    for (int round = 0; round < 50000; ++round) {
        std::u16string path;
        for (auto count = random() % 12; count > 0; --count)
            path += pieces[random() % std::size(pieces)];
        for (const char16_t separator : {u'/', u'\\'}) {
            const Filename name{IString(path), separator};
            const std::u16string expected = slowlyNormal(path, separator);
            ASSERT_EQ(name.path().view(), expected) << IString(path).toUtf8();
            // Whatever the path is, directory and name make up the whole of it.
            ASSERT_LE(name.name().length(), expected.size());
            ASSERT_TRUE(name.path().endsWith(name.name().view())) << IString(path).toUtf8();
        }
    }
}

TEST(Filename, LongPathsOfStepsAreQuick) {
    std::u16string path;
    for (int i = 0; i < 100000; ++i) path += u"/a/..";
    EXPECT_EQ(Filename(IString(path + u"/b"), u'/').path().view(), u"/b");
}

TEST(Filename, Joins) {
    struct Case {
        const char16_t* directory;
        const char16_t* file;
        const char* expected;
    };
    const Case cases[] = {
        {u"", u"", ""},
        {u"a\\\\b\\", u"", "a\\\\b\\"},
        {u"", u"f.txt", "f.txt"},
        {u"C:", u"f.txt", "C:f.txt"},
        {u"C:\\", u"f.txt", "C:\\f.txt"},
        {u"C:\\a\\", u"..\\f.txt", "C:\\f.txt"},
        {u"dir", u"sub\\", "dir\\sub"},
        {u"\\", u"x", "\\\\x"},
        {u"a/b", u"c", "a/b\\c"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Filename(c.directory, c.file, u'\\').path().toUtf8(), c.expected);
    EXPECT_EQ(Filename(u"/tmp", u"x", u'/').path().view(), u"/tmp/x");
    EXPECT_EQ(Filename(u"/", u"x", u'/').path().view(), u"//x");
}

TEST(Filename, Parses) {
    struct Case {
        const char16_t* path;
        char16_t separator;
        const char* parts;  // root|directory|name|baseName|extension
    };
    const Case cases[] = {
        {u"", u'\\', "||||"},
        {u"C:", u'\\', "C:|C:|||"},
        {u"C:\\", u'\\', "C:|C:\\|||"},
        {u"C:\\f.txt", u'\\', "C:|C:\\|f.txt|f|txt"},
        {u"C:f.txt", u'\\', "C:|C:|f.txt|f|txt"},
        {u"C:\\a\\b.tar.gz", u'\\', "C:|C:\\a|b.tar.gz|b.tar|gz"},
        {u"\\\\server", u'\\', "\\\\server|\\\\server|||"},
        {u"\\\\server\\", u'\\', "\\\\server\\|\\\\server\\|||"},
        {u"\\\\server\\share", u'\\', "\\\\server\\share|\\\\server\\share|||"},
        {u"\\\\server\\share\\dir\\f.txt", u'\\',
         "\\\\server\\share|\\\\server\\share\\dir|f.txt|f|txt"},
        {u"\\\\server\\share\\f.txt", u'\\', "\\\\server\\share|\\\\server\\share|f.txt|f|txt"},
        {u"\\", u'\\', "|\\|||"},
        {u"a\\b", u'\\', "|a|b|b|"},
        {u".profile", u'\\', "||.profile||profile"},
        {u".", u'\\', "||.||"},
        {u"..", u'\\', "||..|.|"},
        {u"name.", u'\\', "||name.|name|"},
        {u"/", u'/', "|/|||"},
        {u"/f.txt", u'/', "|/|f.txt|f|txt"},
        {u"/tmp/dir/f", u'/', "|/tmp/dir|f|f|"},
        {u"//server/share/x", u'/', "|//server/share|x|x|"},
        {u"//x", u'/', "|/|x|x|"},
    };
    for (const Case& c : cases) {
        const Filename f(c.path, c.separator);
        const std::string parts = f.root().toUtf8() + "|" + f.directory().toUtf8() + "|" +
                                  f.name().toUtf8() + "|" + f.baseName().toUtf8() + "|" +
                                  f.extension().toUtf8();
        EXPECT_EQ(parts, c.parts) << IString(c.path).toUtf8();
    }
}

TEST(Filename, PartsFollowThePath) {
    Filename f(u"a\\b.c", u'\\');
    EXPECT_EQ(f.name().view(), u"b.c");
    f = IString(u"x/y/z.q");
    EXPECT_EQ(f.path().view(), u"x\\y\\z.q");
    EXPECT_EQ(f.name().view(), u"z.q");
    const Filename other(u"k/l.m", u'/');
    f = other;
    EXPECT_EQ(f.separator(), u'/');
    EXPECT_EQ(f.name().view(), u"l.m");
    f = *&f;
    EXPECT_EQ(Filename(f).extension().view(), u"m");
}

TEST(Filename, KnowsAbsolutePaths) {
    const auto absolute = [](const char16_t* path, char16_t separator) {
        return Filename(path, separator).isAbsolute();
    };
    EXPECT_TRUE(absolute(u"\\\\server\\share", u'\\'));
    EXPECT_TRUE(absolute(u"C:\\", u'\\'));
    EXPECT_TRUE(absolute(u"C:/x", u'\\'));
    EXPECT_FALSE(absolute(u"C:", u'\\'));
    EXPECT_FALSE(absolute(u"C:x", u'\\'));
    EXPECT_FALSE(absolute(u"\\x", u'\\'));
    EXPECT_FALSE(absolute(u"C:\\x", u'/'));
    EXPECT_FALSE(absolute(u"x/y", u'/'));
    EXPECT_FALSE(absolute(u"", u'/'));
    EXPECT_EQ(absolute(u"/x", u'/'), Filename::defaultSeparator() == u'/');
}

TEST(Filename, KnowsDeviceNames) {
    for (const char16_t* name :
         {u"CON", u"con", u"C:\\x\\Prn.txt", u"aux.", u"nul", u"COM1", u"lpt9.dat"})
        EXPECT_TRUE(Filename(name, u'\\').isDeviceName()) << IString(name).toUtf8();
    for (const char16_t* name : {u"", u"CO", u"COM", u"COM0", u"LPT0", u"COM10", u"CONX", u"COMA",
                                 u".con", u"con.tar.gz", u"con\\x"})
        EXPECT_FALSE(Filename(name, u'\\').isDeviceName()) << IString(name).toUtf8();
}

TEST(Filename, GivesNarrowParts) {
    const std::string path = std::string("dir") +
                             (Filename::defaultSeparator() == u'/' ? '/' : '\\') +
                             "\xC3\xA9t\xC3\xA9.png";
    char buffer[100];
    Filename::narrowRoot(path.c_str(), buffer);
    EXPECT_STREQ(buffer, "");
    Filename::narrowDirectory(path.c_str(), buffer);
    EXPECT_STREQ(buffer, "dir");
    Filename::narrowName(path.c_str(), buffer);
    EXPECT_STREQ(buffer, "\xC3\xA9t\xC3\xA9.png");
    Filename::narrowBaseName(path.c_str(), buffer);
    EXPECT_STREQ(buffer, "\xC3\xA9t\xC3\xA9");
    Filename::narrowExtension(path.c_str(), buffer);
    EXPECT_STREQ(buffer, "png");
}

TEST(Filename, TakesTheWorkingDirectory) {
    std::u16string expected;
    Filename name(u"old");
    if (platform::workingDirectory(expected, 260)) {
        EXPECT_TRUE(name.setToWorkingDirectory());
        EXPECT_EQ(name.path(), Filename(IString(expected)).path());
        EXPECT_TRUE(name.isAbsolute());
    } else {
        EXPECT_FALSE(name.setToWorkingDirectory());
        EXPECT_EQ(name.path().view(), u"old");
    }
}

}  // namespace
}  // namespace brushwork::znOS
