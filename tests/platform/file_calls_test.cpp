#include "platform/file_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "platform/owner_names.h"
#include "support/scratch_directory.h"

namespace brushwork::platform {
namespace {

class FileCallsTest : public testing::Test {
  protected:
    ScratchDirectory scratch_;
};

TEST_F(FileCallsTest, StreamsOpenByTheFirstLetter) {
    int number = -1;
    scratch_.put("f", "abc");
    EXPECT_TRUE(openStream(scratch_.name("f"), "rwb", number));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(scratch_.get("f"), "abc");
    EXPECT_FALSE(openStream(scratch_.name("none"), "rwb", number));
    EXPECT_EQ(number, 2);
    EXPECT_FALSE(openStream(scratch_.name("f/g"), "wb", number));
    EXPECT_EQ(number, 2);
    EXPECT_FALSE(openStream(scratch_.name(""), "rb", number));
    EXPECT_EQ(number, 13);
    EXPECT_FALSE(openStream(scratch_.name(""), "wb", number));
    EXPECT_EQ(number, 13);
    EXPECT_FALSE(openStream(scratch_.name("f"), "b", number));
    EXPECT_EQ(number, 22);
    EXPECT_FALSE(openStream(scratch_.name("f") + u'\0', "rb", number));
    EXPECT_EQ(number, 2);
    const FileStream stream = openStream(scratch_.name("f"), "a+b", number);
    ASSERT_TRUE(stream);
    EXPECT_EQ(std::fgetc(stream.get()), 'a');
}

TEST_F(FileCallsTest, RenamesWithoutOverwriting) {
    scratch_.put("a", "A");
    scratch_.put("b", "B");
    std::filesystem::create_directories(scratch_ / "d/e");
    EXPECT_EQ(renameFile(scratch_.name("a"), scratch_.name("b")).number, 17);
    EXPECT_EQ(renameFile(scratch_.name("a"), scratch_.name("d")).number, 17);
    EXPECT_EQ(renameFile(scratch_.name("a"), scratch_.name("a")).number, 0);
    EXPECT_EQ(renameFile(scratch_.name("x"), scratch_.name("x")).number, 2);
    EXPECT_EQ(renameFile(scratch_.name("x"), scratch_.name("y")).number, 2);
    EXPECT_FALSE(renameFile(scratch_.name("d"), scratch_.name("d/e/f")).ok());
    EXPECT_EQ(renameFile(scratch_.name("a"), scratch_.name("c")).number, 0);
    EXPECT_EQ(scratch_.get("c"), "A");
    EXPECT_EQ(scratch_.get("b"), "B");
}

TEST_F(FileCallsTest, DirectoriesAnswerTheTargetsNumbers) {
    EXPECT_EQ(makeDirectory(scratch_.name("d")).number, 0);
    EXPECT_EQ(makeDirectory(scratch_.name("d")).number, 17);
    EXPECT_EQ(makeDirectory(scratch_.name("x/y")).number, 2);
    scratch_.put("d/f", "");
    EXPECT_EQ(removeDirectory(scratch_.name("d")).number, 41);
    EXPECT_EQ(unlinkFile(scratch_.name("d")).number, 13);
    EXPECT_EQ(unlinkFile(scratch_.name("d/f")).number, 0);
    EXPECT_EQ(unlinkFile(scratch_.name("d/f")).number, 2);
    EXPECT_EQ(removeDirectory(scratch_.name("d")).number, 0);
    EXPECT_EQ(removeDirectory(scratch_.name("d")).number, 2);
    const CallResult missing = removeDirectory(scratch_.name("d"));
    EXPECT_FALSE(systemErrorText(missing.textCode).empty());
    EXPECT_TRUE(systemErrorText(0x7FFFFFF0).empty());
}

TEST_F(FileCallsTest, ListsNamesOnce) {
    std::set<std::u16string> expected{u".", u".."};
    for (int i = 0; i < 500; ++i) {
        const std::string name = "entry" + std::to_string(i);
        scratch_.put(name, "");
        expected.insert(std::u16string(name.begin(), name.end()));
    }
    std::vector<std::u16string> names;
    ASSERT_TRUE(listDirectory(scratch_.name(""), names).ok());
    EXPECT_EQ(names.size(), expected.size());
    EXPECT_EQ(std::set<std::u16string>(names.begin(), names.end()), expected);
    EXPECT_EQ(listDirectory(scratch_.name("none/"), names).number, 3);
    EXPECT_TRUE(names.empty());
}

TEST_F(FileCallsTest, CopiesWithTimesAndRights) {
    const std::string bytes(700000, 'c');
    const auto from = scratch_.put("from", bytes);
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(50);
    std::filesystem::last_write_time(from, old);
    EXPECT_EQ(copyFile(scratch_.name("none"), scratch_.name("to"), true).number, 2);
    EXPECT_EQ(copyFile(scratch_.name("from"), scratch_.name("x/to"), true).number, 3);
    EXPECT_EQ(copyFile(scratch_.name(""), scratch_.name("to"), true).number, 5);
    EXPECT_EQ(copyFile(scratch_.name("from"), scratch_.name("to"), true).number, 0);
    EXPECT_EQ(scratch_.get("to"), bytes);
    EXPECT_EQ(std::filesystem::last_write_time(scratch_ / "to"),
              std::filesystem::last_write_time(from));
    EXPECT_EQ(copyFile(scratch_.name("from"), scratch_.name("to"), true).number, 80);
    scratch_.put("from", "short");
    EXPECT_EQ(copyFile(scratch_.name("from"), scratch_.name("to"), false).number, 0);
    EXPECT_EQ(scratch_.get("to"), "short");
    EXPECT_FALSE(copyFile(scratch_.name("from"), scratch_.name("from"), false).ok());
    EXPECT_EQ(scratch_.get("from"), "short");
    EXPECT_EQ(scratch_.entryCount(), 2U);
}

TEST_F(FileCallsTest, UniqueFilesUseThreeUnitsOfThePrefix) {
    std::u16string path;
    const std::u16string directory = scratch_.path().u16string();
    ASSERT_TRUE(makeUniqueFile(directory, u"\u00E4bcdef", path).ok());
    EXPECT_TRUE(path.starts_with(directory + pathSeparator() + u"\u00E4bc"));
    EXPECT_FALSE(path.starts_with(directory + pathSeparator() + u"\u00E4bcdef"));
    FileStatus status;
    ASSERT_TRUE(statFile(path, status).ok());
    EXPECT_EQ(status.kind, FileKind::File);
    EXPECT_EQ(status.size, 0U);
    ASSERT_TRUE(makeUniqueFile(directory, u"", path).ok());
    EXPECT_EQ(scratch_.entryCount(), 2U);
    EXPECT_EQ(makeUniqueFile(scratch_.name("none"), u"abc", path).number, 2);
}

TEST_F(FileCallsTest, WorkingDirectoryNeedsRoom) {
    std::u16string path = u"old";
    EXPECT_FALSE(workingDirectory(path, 1));
    EXPECT_EQ(path, u"old");
    ASSERT_TRUE(workingDirectory(path, 4096));
    const std::size_t length = path.size();
    EXPECT_FALSE(workingDirectory(path, length));
    EXPECT_TRUE(workingDirectory(path, length + 1));
    std::u16string full;
    ASSERT_TRUE(fullPath(u"x", full).ok());
    EXPECT_TRUE(full.starts_with(path));
    EXPECT_TRUE(full.ends_with(pathSeparator() + std::u16string(u"x")));
    EXPECT_FALSE(fullPath(u"", full).ok());
}

TEST_F(FileCallsTest, OwnersHaveNames) {
    OwnerNames names;
    EXPECT_TRUE(readOwnerNames(scratch_.path().u16string(), names));
    EXPECT_FALSE(names.owner.empty());
    EXPECT_FALSE(names.group.empty());
    EXPECT_FALSE(readOwnerNames(scratch_.name("none"), names));
    EXPECT_EQ(names.owner, "Unknown");
    EXPECT_EQ(names.group, "Unknown");
}

}  // namespace
}  // namespace brushwork::platform
