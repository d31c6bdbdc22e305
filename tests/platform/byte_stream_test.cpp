#include "platform/byte_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <vector>

#include "support/scratch_directory.h"
#include "support/test_seed.h"

namespace brushwork::platform {
namespace {

class ByteStreamTest : public testing::Test {
  protected:
    ScratchDirectory scratch_;
};

// Any place, any length, against the bytes themselves.
void checkSource(ByteSource& source, const std::string& bytes) {
    EXPECT_EQ(source.size(), bytes.size());
    for (std::size_t offset = 0; offset < bytes.size() + 3; ++offset) {
        for (const std::size_t count :
             {std::size_t{0}, std::size_t{1}, std::size_t{7}, bytes.size()}) {
            std::vector<char> buffer(count + 1, '#');
            const std::size_t came = source.readAt(offset, buffer.data(), count);
            const std::string expected = bytes.substr(std::min(offset, bytes.size()), count);
            ASSERT_EQ(std::string(buffer.data(), came), expected) << offset << " " << count;
            ASSERT_EQ(buffer[came], '#');
        }
    }
    char byte = 0;
    EXPECT_EQ(source.readAt(std::numeric_limits<std::uint64_t>::max(), &byte, 1), 0U);
    EXPECT_EQ(source.readAt(std::uint64_t{1} << 63, &byte, 1), 0U);
    EXPECT_EQ(source.readAt(std::uint64_t{1} << 32, &byte, 1), 0U);
}

TEST_F(ByteStreamTest, SourcesReadAnywhere) {
    const std::string bytes = "The quick brown fox";
    scratch_.put("f", bytes);
    const auto file = openFileSource(scratch_.name("f"));
    ASSERT_TRUE(file);
    checkSource(*file, bytes);
    const std::vector<std::uint8_t> copy(bytes.begin(), bytes.end());
    checkSource(*openMemorySource(copy), bytes);
    checkSource(*openMemorySource({}), "");
    EXPECT_FALSE(openFileSource(scratch_.name("none")));
    EXPECT_FALSE(openFileSource(scratch_.name("")));
    EXPECT_FALSE(openFileSource(u""));
}

TEST_F(ByteStreamTest, TargetsAreInPlaceOnlyWhenCommitted) {
    scratch_.put("f", "old");
    {
        const auto dropped = createFileTarget(scratch_.name("f"));
        ASSERT_TRUE(dropped);
        EXPECT_TRUE(dropped->writeAt(0, "new", 3));
        EXPECT_EQ(scratch_.get("f"), "old");
    }
    EXPECT_EQ(scratch_.get("f"), "old");
    EXPECT_EQ(scratch_.entryCount(), 1U);
    for (const char* name : {"f", "g"}) {
        const auto target = createFileTarget(scratch_.name(name));
        ASSERT_TRUE(target);
        EXPECT_TRUE(target->writeAt(0, "new", 3));
        EXPECT_TRUE(target->commit());
        EXPECT_FALSE(target->commit());
        EXPECT_EQ(scratch_.get(name), "new");
    }
    EXPECT_EQ(scratch_.entryCount(), 2U);
    EXPECT_FALSE(createFileTarget(scratch_.name("none/f")));
    EXPECT_FALSE(createFileTarget(scratch_.name("")));
    EXPECT_FALSE(createFileTarget(scratch_.path().u16string()));
    EXPECT_FALSE(createFileTarget(u""));
}

TEST_F(ByteStreamTest, TargetsTakeBytesInAnyOrder) {
    const auto seed = brushwork::test::testSeed();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::string model;
    const auto target = createFileTarget(scratch_.name("f"));
    ASSERT_TRUE(target);
    for (int round = 0; round < 500; ++round) {
        const std::size_t offset = random() % 5000;
        const std::string block(random() % 300, static_cast<char>('a' + round % 26));
        if (random() % 2 == 0) {
            ASSERT_TRUE(target->writeAt(offset, block.data(), block.size()));
            if (!block.empty() && model.size() < offset + block.size())
                model.resize(offset + block.size());
            if (!block.empty()) model.replace(offset, block.size(), block);
        } else {
            std::vector<char> buffer(block.size() + 1);
            const std::size_t came = target->readAt(offset, buffer.data(), block.size());
            const std::string expected =
                offset < model.size() ? model.substr(offset, block.size()) : std::string();
            ASSERT_EQ(std::string(buffer.data(), came), expected);
        }
        ASSERT_EQ(target->size(), model.size());
    }
    ASSERT_TRUE(target->commit());
    EXPECT_EQ(scratch_.get("f"), model);
}

TEST_F(ByteStreamTest, AFailedWriteIsNeverCommitted) {
    scratch_.put("f", "old");
    {
        const auto target = createFileTarget(scratch_.name("f"));
        ASSERT_TRUE(target);
        EXPECT_TRUE(target->writeAt(0, "new", 3));
        EXPECT_FALSE(target->writeAt(std::numeric_limits<std::uint64_t>::max() - 1, "xyz", 3));
        EXPECT_FALSE(target->commit());
    }
    EXPECT_EQ(scratch_.get("f"), "old");
    EXPECT_EQ(scratch_.entryCount(), 1U);
}

}  // namespace
}  // namespace brushwork::platform
