#include "foundation/files/file.h"

#include <gtest/gtest.h>

#include <array>

#include "foundation/files/file_factory_impl.h"
#include "foundation/files/local_file_transport.h"
#include "support/scratch_directory.h"

namespace brushwork::znOS {
namespace {

using znString::IString;
using znUtil::Error;

std::string messageOf(const Error& error) {
    return error.message() ? error.message()->toUtf8() : std::string("(none)");
}

class FileTest : public testing::Test {
  protected:
    [[nodiscard]] IString at(std::string_view name) const { return IString(scratch_.name(name)); }
    ScratchDirectory scratch_;
};

TEST_F(FileTest, StatesDecide) {
    File file(at("f"));
    EXPECT_EQ(file.close().code(), 8);
    EXPECT_EQ(file.open(readBinary).code(), 18);
    EXPECT_FALSE(file.isOpen());
    std::size_t count = 7;
    char byte = 0;
    EXPECT_EQ(file.read(&byte, 1, count).code(), 4);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(file.write("x", 1, count).code(), 4);
    EXPECT_EQ(file.open(createBinary).code(), 0);
    EXPECT_EQ(file.open(createBinary).code(), 9);
    EXPECT_EQ(file.openUnique(createBinary).code(), 9);
    EXPECT_EQ(file.close().code(), 0);
    EXPECT_EQ(file.close().code(), 8);
    EXPECT_EQ(messageOf(file.close()), "File is not open");
    std::vector<IString> entries;
    EXPECT_EQ(file.list(entries).code(), 10);
    // A directory opens on no system, and below a file there is nothing.
    EXPECT_EQ(File(at("")).open(readBinary).code(), 4);
    EXPECT_EQ(File(at("f/below")).open(readBinary).code(), 18);
}

TEST_F(FileTest, ReadsToTheEndAndBeyond) {
    scratch_.put("f", "0123456789");
    File file(at("f"));
    ASSERT_EQ(file.open(readBinary).code(), 0);
    std::array<char, 32> buffer{};
    std::size_t count = 0;
    EXPECT_EQ(file.read(buffer.data(), 10, count).code(), 0);
    EXPECT_EQ(count, 10U);
    EXPECT_EQ(file.read(buffer.data(), 1, count).code(), 3);
    EXPECT_EQ(count, 0U);
    ASSERT_EQ(file.close().code(), 0);
    ASSERT_EQ(file.open(readBinary).code(), 0);
    EXPECT_EQ(file.read(buffer.data(), 11, count).code(), 3);
    EXPECT_EQ(count, 10U);
    EXPECT_EQ(std::string(buffer.data(), count), "0123456789");
    // A stream opened for reading takes nothing.
    EXPECT_EQ(file.write("x", 1, count).code(), 4);
}

TEST_F(FileTest, ModesDoWhatTheirTextsSay) {
    EXPECT_EQ(streamMode(6), "rb");
    EXPECT_EQ(streamMode(10), "wb");
    EXPECT_EQ(streamMode(42), "wb");
    EXPECT_EQ(streamMode(40), "wb");
    EXPECT_EQ(streamMode(12), "rwb");
    EXPECT_EQ(streamMode(5), "rt");
    EXPECT_EQ(streamMode(16 | 12 | 1), "a+t");
    EXPECT_EQ(streamMode(0), "b");

    scratch_.put("f", "abc");
    std::size_t count = 0;
    {
        File both(at("f"));
        ASSERT_EQ(both.open(OpenRead | OpenWrite).code(), 0);
        EXPECT_EQ(both.write("x", 1, count).code(), 4);
        char byte = 0;
        EXPECT_EQ(both.read(&byte, 1, count).code(), 0);
        EXPECT_EQ(byte, 'a');
    }
    EXPECT_EQ(File(at("new")).open(OpenRead | OpenWrite).code(), 18);
    EXPECT_EQ(File(at("f")).open(0).code(), 4);
    {
        File end(at("f"));
        ASSERT_EQ(end.open(OpenAppend).code(), 0);
        EXPECT_EQ(end.write("de", 2, count).code(), 0);
        EXPECT_EQ(scratch_.get("f"), "abcde");  // nothing waits in a buffer
    }
    File over(at("f"));
    ASSERT_EQ(over.open(writeBinary).code(), 0);
    EXPECT_EQ(scratch_.get("f"), "");
}

TEST_F(FileTest, TellsAboutFilesAndDirectories) {
    scratch_.put("f", "12345");
    FileInfo info;
    info.size = 99;
    info.owner = znString::CString("old");
    ASSERT_EQ(File(at("f")).stat(info).code(), 0);
    EXPECT_TRUE(info.exists && info.isFile && info.isReadable && info.isWritable);
    EXPECT_FALSE(info.isDirectory);
    EXPECT_EQ(info.size, 5U);
    EXPECT_TRUE(info.owner.isEmpty());
    EXPECT_LE(info.creationTime, info.modificationTime);
    ASSERT_EQ(File(at("")).stat(info, true).code(), 0);
    EXPECT_TRUE(info.exists && info.isDirectory);
    EXPECT_FALSE(info.isFile);
    EXPECT_FALSE(info.owner.isEmpty());
    EXPECT_FALSE(info.group.isEmpty());

    ASSERT_EQ(File(at("none")).stat(info).code(), 0);
    EXPECT_FALSE(info.exists || info.isReadable);
    ASSERT_EQ(File(IString()).stat(info).code(), 0);
    EXPECT_FALSE(info.exists);
    const Error extras = File(at("none")).stat(info, true);
    EXPECT_EQ(extras.code(), -1);
    EXPECT_EQ(messageOf(extras), "Failed to query Owner/Group of " + at("none").toUtf8());
    EXPECT_EQ(info.owner.view(), "Unknown");

    // A stat tidies the path up first.
    EXPECT_TRUE(File::isFile(at("none//../f")));
    EXPECT_TRUE(File::exists(at("f")));
    EXPECT_TRUE(File::isDirectory(Filename(at(""))));
    EXPECT_FALSE(File::isFile(at("")));
    EXPECT_FALSE(File::exists(Filename(at("none"))));
}

TEST_F(FileTest, SizesGoBeyondFourGigabytes) {
    constexpr std::uintmax_t size = 5ULL << 30;
    std::error_code error;
    std::filesystem::resize_file(scratch_.put("big", ""), size, error);
    if (error) GTEST_SKIP() << "no room for a sparse file";
    FileInfo info;
    ASSERT_EQ(File(at("big")).stat(info).code(), 0);
    EXPECT_EQ(info.size, size);
}

TEST_F(FileTest, NamesWithTheFileSchemeAreTheSameFile) {
    EXPECT_EQ(localPath(IString(u"file:/tmp/x"), u'/').view(), u"/tmp/x");
    EXPECT_EQ(localPath(IString(u"file:///tmp/x"), u'/').view(), u"/tmp/x");
    EXPECT_EQ(localPath(IString(u"/tmp/x"), u'/').view(), u"/tmp/x");
    EXPECT_EQ(localPath(IString(u"file:x"), u'/').view(), u"x");
    EXPECT_EQ(localPath(IString(u"file:/C:\\x"), u'\\').view(), u"C:\\x");
    EXPECT_EQ(localPath(IString(u"file:C:\\x"), u'\\').view(), u"C:\\x");
    EXPECT_EQ(localPath(IString(u"C:\\x"), u'\\').view(), u"C:\\x");
    EXPECT_EQ(localPath(IString(u"FILE:/x"), u'/').view(), u"FILE:/x");
    EXPECT_EQ(localPath(IString(u"f:file:/x"), u'/').view(), u"f:file:/x");
    EXPECT_EQ(localPath(IString(u"file"), u'/').view(), u"file");

    scratch_.put("f", "1");
    IString name(u"file:");
    name.append(at("f").view());
    EXPECT_TRUE(File::isFile(name));
    EXPECT_EQ(File::remove(name).code(), 0);
    EXPECT_FALSE(File::exists(at("f")));
}

TEST_F(FileTest, RemovesFilesAndEmptyDirectories) {
    std::filesystem::create_directory(scratch_ / "d");
    scratch_.put("d/f", "1");
    EXPECT_EQ(File::remove(at("d")).code(), 13);
    EXPECT_EQ(File::remove(at("d/f")).code(), 0);
    EXPECT_EQ(File::remove(at("d/")).code(), 0);
    EXPECT_EQ(File::remove(at("d")).code(), 18);
    EXPECT_EQ(scratch_.entryCount(), 0U);
}

TEST_F(FileTest, WithoutATransportEveryCheckFails) {
    File file{std::unique_ptr<FileTransport>()};
    FileInfo info;
    std::vector<IString> entries;
    std::size_t count = 5;
    EXPECT_EQ(file.open(readBinary).code(), 9);
    EXPECT_EQ(file.openUnique(readBinary).code(), 9);
    EXPECT_EQ(file.close().code(), 8);
    EXPECT_EQ(file.list(entries).code(), 10);
    EXPECT_EQ(file.stat(info).code(), 1);
    EXPECT_EQ(file.read(&info, 1, count).code(), 1);
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(file.path().isEmpty());
}

TEST_F(FileTest, MoveWithinADirectoryRenamesAndNeverOverwrites) {
    scratch_.put("a", "A");
    scratch_.put("b", "B");
    const Filename a{at("a")};
    const Filename b{at("b")};
    const Filename c{at("c")};
    EXPECT_EQ(File::move(a, c).code(), 0);
    EXPECT_EQ(scratch_.get("c"), "A");
    const Error missing = File::move(a, b);
    EXPECT_EQ(missing.code(), 6);
    EXPECT_EQ(messageOf(missing),
              "File or path specified by " + a.path().toUtf8() + " name not found.");
    const Error taken = File::move(c, b, Overwrite::Yes);
    EXPECT_EQ(taken.code(), 6);
    EXPECT_EQ(scratch_.get("b"), "B");
    EXPECT_EQ(scratch_.get("c"), "A");
}

TEST_F(FileTest, MoveBetweenDirectoriesCopiesAndRemoves) {
    std::filesystem::create_directory(scratch_ / "d");
    scratch_.put("a", "A");
    scratch_.put("d/b", "B");
    const Filename a{at("a")};
    const Filename b{at("d/b")};
    const Filename none{at("none")};
    const Error taken = File::move(a, b);
    EXPECT_EQ(taken.code(), 3);
    const std::string start =
        "Error copying " + a.path().toUtf8() + " to " + b.path().toUtf8() + ": ";
    EXPECT_EQ(messageOf(taken).substr(0, start.size()), start);
    EXPECT_GT(messageOf(taken).size(), start.size());
    EXPECT_EQ(scratch_.get("d/b"), "B");
    EXPECT_EQ(File::move(none, b).code(), 2);
    EXPECT_EQ(File::move(a, Filename{at("x/b")}).code(), 1);
    EXPECT_EQ(File::move(a, b, Overwrite::Yes).code(), 0);
    EXPECT_EQ(scratch_.get("d/b"), "A");
    EXPECT_FALSE(File::exists(a));
}

}  // namespace
}  // namespace brushwork::znOS
