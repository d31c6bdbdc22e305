// Links, rights, pipes and devices as POSIX systems have them.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

#include "platform/byte_stream.h"
#include "platform/file_calls.h"
#include "support/scratch_directory.h"

namespace brushwork::platform {
namespace {

class PosixByteStreamTest : public testing::Test {
  protected:
    void write(const std::u16string& path, const std::string& bytes) {
        const auto target = createFileTarget(path);
        ASSERT_TRUE(target);
        ASSERT_TRUE(target->writeAt(0, bytes.data(), bytes.size()));
        ASSERT_TRUE(target->commit());
    }
    [[nodiscard]] unsigned int rights(const char* name) const {
        struct stat found {};
        return ::stat((scratch_ / name).c_str(), &found) == 0 ? found.st_mode & 07777U : 0U;
    }
    ScratchDirectory scratch_;
};

TEST_F(PosixByteStreamTest, KeepsRightsAndObeysTheMask) {
    scratch_.put("f", "old");
    ::chmod((scratch_ / "f").c_str(), 0640);
    write(scratch_.name("f"), "new");
    EXPECT_EQ(rights("f"), 0640U);
    const mode_t mask = ::umask(027);
    write(scratch_.name("g"), "new");
    ::umask(mask);
    EXPECT_EQ(rights("g"), 0640U);
}

TEST_F(PosixByteStreamTest, WritesBehindLinks) {
    std::filesystem::create_directory(scratch_ / "d");
    scratch_.put("d/real", "old");
    std::filesystem::create_symlink("d/real", scratch_ / "link");
    std::filesystem::create_symlink("link", scratch_ / "chain");
    std::filesystem::create_symlink("d/later", scratch_ / "dangling");
    std::filesystem::create_symlink("loop", scratch_ / "loop");
    write(scratch_.name("chain"), "new");
    EXPECT_EQ(scratch_.get("d/real"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(scratch_ / "chain"));
    EXPECT_TRUE(std::filesystem::is_symlink(scratch_ / "link"));
    write(scratch_.name("dangling"), "made");
    EXPECT_EQ(scratch_.get("d/later"), "made");
    EXPECT_TRUE(std::filesystem::is_symlink(scratch_ / "dangling"));
    EXPECT_FALSE(createFileTarget(scratch_.name("loop")));
}

TEST_F(PosixByteStreamTest, WritesIntoDevicesAndPipes) {
    write(u"/dev/null", "gone");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));

    // Written back to front, and yet the pipe gets it in order.
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const std::string name = "/dev/fd/" + std::to_string(ends[1]);
    const std::string bytes(300000, 'p');
    std::string got;
    std::thread reader([&] {
        std::array<char, 4096> block{};
        ssize_t came = 0;
        while ((came = ::read(ends[0], block.data(), block.size())) > 0)
            got.append(block.data(), static_cast<std::size_t>(came));
    });
    {
        const auto target = createFileTarget(std::u16string(name.begin(), name.end()));
        EXPECT_TRUE(target);
        if (target) {
            EXPECT_TRUE(target->writeAt(1, bytes.data(), bytes.size()));
            EXPECT_TRUE(target->writeAt(0, "<", 1));
            EXPECT_TRUE(target->commit());
        }
    }
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_EQ(got, "<" + bytes);

    ASSERT_EQ(::mkfifo((scratch_ / "fifo").c_str(), 0600), 0);
    EXPECT_FALSE(openFileSource(scratch_.name("fifo")));
}

TEST_F(PosixByteStreamTest, WritesAFileWhoseDirectoryTakesNoNewOnes) {
    std::filesystem::create_directory(scratch_ / "d");
    scratch_.put("d/f", "an old text");
    scratch_.put("d/readonly", "old");
    ::chmod((scratch_ / "d/readonly").c_str(), 0444);
    ::chmod((scratch_ / "d").c_str(), 0555);
    if (::access((scratch_ / "d").c_str(), W_OK) == 0) {
        ::chmod((scratch_ / "d").c_str(), 0755);
        GTEST_SKIP() << "this user may write anywhere";
    }
    write(scratch_.name("d/f"), "new");
    EXPECT_EQ(scratch_.get("d/f"), "new");
    EXPECT_FALSE(createFileTarget(scratch_.name("d/g")));
    EXPECT_FALSE(createFileTarget(scratch_.name("d/readonly")));
    ::chmod((scratch_ / "d").c_str(), 0755);
    EXPECT_FALSE(createFileTarget(scratch_.name("d/readonly")));
}

TEST_F(PosixByteStreamTest, RenamesDoNotFollowIntoTheSource) {
    std::filesystem::create_directories(scratch_ / "d/e");
    EXPECT_EQ(renameFile(scratch_.name("d"), scratch_.name("d/e/f")).number, 22);
    std::filesystem::create_symlink("none", scratch_ / "dangling");
    scratch_.put("f", "");
    EXPECT_EQ(renameFile(scratch_.name("f"), scratch_.name("dangling")).number, 17);
    // A link to a directory is removed as one; the directory stays.
    std::filesystem::create_directory_symlink("d", scratch_ / "link");
    EXPECT_TRUE(removeDirectory(scratch_.name("link")).ok());
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "d/e"));
}

}  // namespace
}  // namespace brushwork::platform
