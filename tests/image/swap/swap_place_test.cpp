#include "image/swap/swap_place.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

#include "platform/environment.h"
#include "platform/file_calls.h"
#include "platform/swap_io.h"
#include "support/scratch_directory.h"

namespace brushwork {
namespace {

constexpr const char* names[] = {"ZENON_TEMP_DIR", "TMP",     "TEMP",    "TMPDIR",
                                 "TMP_DIR",        "TEMPDIR", "TEMP_DIR"};

class SwapPlace : public testing::Test {
  protected:
    SwapPlace() {
        for (std::size_t i = 0; i < std::size(names); ++i)
            before_[i] = platform::environmentText(names[i]);
        unsetAll();
    }
    ~SwapPlace() override {
        for (std::size_t i = 0; i < std::size(names); ++i)
            if (before_[i])
                platform::setEnvironmentText(names[i], *before_[i]);
            else
                platform::unsetEnvironmentVariable(names[i]);
    }
    static void unsetAll() {
        for (const char* name : names) platform::unsetEnvironmentVariable(name);
    }

  private:
    std::optional<std::u16string> before_[std::size(names)];
};

TEST_F(SwapPlace, TheFirstVariableThatIsSetDecides) {
    for (std::size_t first = 0; first < std::size(names); ++first) {
        unsetAll();
        for (std::size_t i = first; i < std::size(names); ++i)
            platform::setEnvironmentVariable(names[i], std::string("dir") + names[i]);
        const std::string expected = std::string("dir") + names[first];
        const std::u16string directory = swapDirectories().first;
        EXPECT_EQ(std::string(directory.begin(), directory.end()), expected);
        // Another TMP stays what it was.
        EXPECT_EQ(platform::environmentVariable("TMP"),
                  first == 0 ? std::string("dirTMP") : expected);
    }
}

TEST_F(SwapPlace, WithoutAVariableTheSystemsDirectoryIsTakenAndNoted) {
    const SwapDirectories directories = swapDirectories();
    EXPECT_EQ(directories.first, directories.second);
    EXPECT_NE(directories.second, directories.last);
    EXPECT_EQ(platform::environmentText("TMP"), directories.second);
}

TEST_F(SwapPlace, NamesAreNewAndStandInTheDirectory) {
    std::set<std::u16string> seen;
    for (int i = 0; i < 500; ++i) {
        const std::u16string name = swapFileName(u"some/", u"SIDTMP");
        EXPECT_EQ(name.rfind(u"some/SIDTMP", 0), 0U);
        EXPECT_TRUE(seen.insert(name).second);
    }
    EXPECT_EQ(swapFileName(u"", u"SID").rfind(u"SID", 0), 0U);
    const std::u16string joined = std::u16string(u"some") + platform::pathSeparator() + u"SID";
    EXPECT_EQ(swapFileName(u"some", u"SID").rfind(joined, 0), 0U);
    const std::size_t fits = longestSwapName - 1 - 3 - 12;
    EXPECT_EQ(swapFileName(std::u16string(fits, u'd'), u"SID").size(), longestSwapName);
    EXPECT_EQ(swapFileName(std::u16string(fits + 1, u'd'), u"SID"), u"");
}

TEST_F(SwapPlace, WhatKilledProcessesLeftIsRemovedAndNothingElse) {
    using platform::PositionedFile;
    const ScratchDirectory scratch;
    const std::u16string directory = scratch.name("");
    const auto exists = [](const std::u16string& path) {
        platform::FileStatus status;
        return platform::statFile(path, status).ok();
    };
    const std::u16string living = swapFileName(directory, u"SID");
    PositionedFile held;
    ASSERT_TRUE(held.open(living, PositionedFile::Mode::CreateOwned));
    // Closed without being deleted, as the end of a process closes it.
    const auto left = [](const std::u16string& path, PositionedFile::Mode mode) {
        PositionedFile file;
        ASSERT_TRUE(file.open(path, mode));
        EXPECT_TRUE(file.writeAt(0, "page", 4));
    };
    const std::u16string dead[] = {swapFileName(directory, u"SID"),
                                   swapFileName(directory, u"SIDTMP")};
    for (const std::u16string& path : dead) left(path, PositionedFile::Mode::CreateOwned);
    // Not such a name: one letter too few, one changed, one more.
    const std::u16string name = swapFileName(directory, u"SID");
    std::u16string changed = name;
    changed[changed.size() - 6] = changed[changed.size() - 6] == u'0' ? u'1' : u'0';
    const std::u16string others[] = {name.substr(0, name.size() - 1), changed, name + u'0'};
    for (const std::u16string& path : others) left(path, PositionedFile::Mode::CreateNew);
    // Such a name, but others may read it.
    const std::u16string open = swapFileName(directory, u"SID");
    int number = 0;
    ASSERT_TRUE(platform::openStream(open, "w", number));

    const std::size_t expected = exists(dead[0]) ? 2 : 0;  // some systems remove them themselves
    EXPECT_EQ(removeAbandonedSwapFiles(directory), expected);
    for (const std::u16string& path : dead) EXPECT_FALSE(exists(path));
    EXPECT_TRUE(exists(living));
    EXPECT_TRUE(exists(open));
    for (const std::u16string& path : others) EXPECT_TRUE(exists(path));
    EXPECT_TRUE(held.close());
    EXPECT_EQ(removeAbandonedSwapFiles(directory), expected / 2);
}

}  // namespace
}  // namespace brushwork
