#include "brushwork/error.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <utility>

namespace brushwork::znUtil {
namespace {

using znString::IString;

std::u16string_view messageOf(const Error& error) {
    return error.message() ? error.message()->view() : u"<none>";
}

TEST(Error, CodesBearTheirTexts) {
    constexpr std::array<const char16_t*, 19> texts = {
        u"Not Implemented",
        u"File Exists",
        u"End Of File",
        u"An I/O problem has occurred",
        u"No write permission",
        u"No read permission",
        u"No Overwrite permission",
        u"File is not open",
        u"File is open",
        u"Resource is not a directory",
        u"Resource is not a file",
        u"The path is too long",
        u"The directory is not empty",
        u"ErrSyscall",
        u"The URL is invalid",
        u"Permission Denied",
        u"Authentication Failed",
        u"File does not exist",
        u"Cannot become the parent of a root directory",
    };
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const Error error(static_cast<std::int32_t>(index) + 1);
        EXPECT_EQ(messageOf(error), texts[index]);
        EXPECT_TRUE(error.failed());
    }
    for (const std::int32_t code : {-1, 20, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(Error(code).message(), nullptr) << code;
        EXPECT_TRUE(Error(code).failed());
    }
    EXPECT_FALSE(Error().failed());
    EXPECT_EQ(Error(), Error(Success));
}

TEST(Error, FormatsMessages) {
    EXPECT_EQ(messageOf({4, u"Error copying %S to %s: %d", "a", u"b", 5}),
              u"Error copying a to b: 5");
    EXPECT_EQ(messageOf({4, " mode=%d", 10}), u" mode=10");
    EXPECT_EQ(messageOf({4, ""}), u"<none>");
    EXPECT_EQ(messageOf({4, u""}), u"<none>");
    EXPECT_EQ(messageOf({4, static_cast<const char*>(nullptr)}), u"<none>");
    EXPECT_EQ(messageOf({4, static_cast<const char16_t*>(nullptr)}), u"<none>");
    EXPECT_EQ(messageOf({4, IString(u"100%s")}), u"100%s") << "a message isn't a pattern";
}

TEST(Error, IsEqualByCodeAndMessage) {
    EXPECT_EQ(Error(3), Error(3, u"End Of File"));
    EXPECT_NE(Error(3), Error(3, u""));
    EXPECT_NE(Error(3, u""), Error(3));
    EXPECT_EQ(Error(3, u""), Error(3, ""));
    EXPECT_NE(Error(3, u""), Error(4, u""));
    EXPECT_NE(Error(3, u"a"), Error(3, u"b"));
}

TEST(Error, CopiesAreDeep) {
    Error first(4, u"one");
    const Error copy(first);
    EXPECT_NE(copy.message(), first.message());
    first = Error(5);
    EXPECT_EQ(messageOf(copy), u"one");
    EXPECT_EQ(first.code(), 5);
    const Error& same = first;
    first = same;
    EXPECT_EQ(messageOf(first), u"No write permission");
    first = Error();
    EXPECT_EQ(first.message(), nullptr);
}

}  // namespace
}  // namespace brushwork::znUtil
