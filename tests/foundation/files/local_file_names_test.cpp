#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "foundation/files/file.h"
#include "foundation/files/local_file_transport.h"
#include "support/scratch_directory.h"

namespace brushwork::znOS {
namespace {

using znString::IString;

class LocalFileNamesTest : public testing::Test {
  protected:
    ScratchDirectory scratch_;
};

TEST_F(LocalFileNamesTest, UniqueFilesBeginLikeTheirPath) {
    struct Case {
        const char* path;
        const char16_t* start;
    };
    const Case cases[] = {{"painting.png", u"pai"}, {"ab.cd", u"abc"}, {".profile", u"pro"}};
    std::set<std::u16string> seen;
    for (const Case& c : cases) {
        for (int round = 0; round < 3; ++round) {
            File file(IString(scratch_.name(c.path)));
            ASSERT_EQ(file.openUnique(createBinary).code(), 0);
            std::size_t count = 0;
            EXPECT_EQ(file.write("x", 1, count).code(), 0);
            const Filename made(file.path());
            EXPECT_TRUE(made.name().beginsWith(c.start)) << made.name().toUtf8();
            EXPECT_EQ(made.directory().view(), scratch_.path().u16string());
            EXPECT_TRUE(seen.insert(std::u16string(made.path().view())).second);
            ASSERT_EQ(file.close().code(), 0);
            EXPECT_TRUE(File::isFile(made));
        }
    }
    EXPECT_EQ(scratch_.entryCount(), 9U);
    EXPECT_EQ(File(IString(scratch_.name("none/x"))).openUnique(createBinary).code(), 18);
}

TEST_F(LocalFileNamesTest, UniqueFilesWithoutADirectoryAreTemporary) {
    Filename::setTemporaryDirectory(IString(scratch_.path().u16string()));
    File file(IString(u"."));
    EXPECT_EQ(file.openUnique(createBinary).code(), 0);
    const Filename made(file.path());
    EXPECT_TRUE(made.name().beginsWith(u"ZNT")) << made.path().toUtf8();
    EXPECT_EQ(made.directory().view(), scratch_.path().u16string());
    LocalFileTransport directory(IString(u"name"));
    EXPECT_EQ(directory.makeUniqueDirectory().code(), 0);
    EXPECT_EQ(scratch_.entryCount(), 2U);
    Filename::setTemporaryDirectory(IString());
}

TEST_F(LocalFileNamesTest, UniqueDirectoriesHaveTenLettersAndNoZ) {
    std::set<char16_t> letters;
    for (int round = 0; round < 100; ++round) {
        LocalFileTransport transport(IString(scratch_.name("anything")));
        ASSERT_EQ(transport.makeUniqueDirectory().code(), 0);
        EXPECT_TRUE(transport.isDirectory());
        const IString name = transport.fileName();
        EXPECT_EQ(name.length(), 10U);
        letters.insert(name.view().begin(), name.view().end());
    }
    EXPECT_EQ(scratch_.entryCount(), 100U);
    EXPECT_EQ(*letters.begin(), u'a');
    EXPECT_EQ(*letters.rbegin(), u'y');
    EXPECT_EQ(letters.size(), 25U);
    LocalFileTransport nowhere(IString(scratch_.name("none/x")));
    EXPECT_EQ(nowhere.makeUniqueDirectory().code(), 4);
}

TEST_F(LocalFileNamesTest, MakesDirectories) {
    LocalFileTransport one(IString(scratch_.name("one")));
    EXPECT_FALSE(one.isDirectory());  // not remembered, since there was nothing
    EXPECT_EQ(one.makeDirectory().code(), 0);
    EXPECT_TRUE(one.isDirectory());
    EXPECT_EQ(one.makeDirectory().code(), 2);
    EXPECT_EQ(LocalFileTransport(IString(scratch_.name("x/y"))).makeDirectory().code(), 4);

    EXPECT_EQ(LocalFileTransport(IString(scratch_.name("one/a//b/c/"))).makeDirectoryPath().code(),
              0);
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "one/a/b/c"));
    EXPECT_EQ(one.makeDirectoryPath().code(), 0);
    scratch_.put("one/f", "");
    EXPECT_EQ(LocalFileTransport(IString(scratch_.name("one/f"))).makeDirectoryPath().code(), 2);
    EXPECT_NE(LocalFileTransport(IString(scratch_.name("one/f/g"))).makeDirectoryPath().code(), 0);
}

TEST_F(LocalFileNamesTest, TheDirectoryTestIsKept) {
    std::filesystem::create_directory(scratch_ / "d");
    LocalFileTransport kept(IString(scratch_.name("d/")));
    EXPECT_TRUE(kept.isDirectory());
    std::filesystem::remove(scratch_ / "d");
    EXPECT_TRUE(kept.isDirectory());
    EXPECT_FALSE(LocalFileTransport(IString(scratch_.name("d"))).isDirectory());
}

TEST_F(LocalFileNamesTest, ListsWithDots) {
    scratch_.put("f", "");
    scratch_.put("\xC3\xA4", "");
    std::vector<IString> entries{IString(u"old")};
    File directory(IString(scratch_.path().u16string()));
    ASSERT_EQ(directory.list(entries, true).code(), 0);
    std::sort(entries.begin(), entries.end());
    const std::vector<IString> expected{u".", u"..", u"f", u"\u00E4"};
    EXPECT_EQ(entries, expected);
    ASSERT_EQ(directory.list(entries).code(), 0);
    std::sort(entries.begin(), entries.end());
    ASSERT_EQ(entries.size(), 4U);
    EXPECT_EQ(entries[2].view(), scratch_.name("f"));
    EXPECT_EQ(LocalFileTransport(IString(scratch_.name("none"))).list(entries, true).code(), 4);
    EXPECT_TRUE(entries.empty());
}

TEST_F(LocalFileNamesTest, ListsPathsOfAtMost260Units) {
    std::u16string path = scratch_.path().u16string();
    const char16_t separator = Filename::defaultSeparator();
    const auto grow = [&](std::size_t size) {
        while (path.size() < size) {
            // Never ends in a lone separator.
            const std::size_t left = size - path.size() - 1;
            path += separator;
            path.append(left > 110 ? 100 : left, u'd');
        }
    };
    std::vector<IString> entries;
    grow(259);  // and a separator
    std::filesystem::create_directories(std::filesystem::path(path));
    EXPECT_EQ(File(IString(path)).list(entries).code(), 0);
    EXPECT_EQ(entries.size(), 2U);
    EXPECT_EQ(File(IString(path + separator)).list(entries).code(), 0);
    path += u'd';
    std::filesystem::create_directories(std::filesystem::path(path));
    EXPECT_EQ(File(IString(path)).list(entries).code(), 12);
    EXPECT_EQ(LocalFileTransport(IString(path + separator)).list(entries, true).code(), 12);
}

}  // namespace
}  // namespace brushwork::znOS
