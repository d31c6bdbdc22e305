#include "platform/environment.h"

#include <gtest/gtest.h>

namespace brushwork::platform {
namespace {

constexpr const char* name = "BRUSHWORK_ENVIRONMENT_TEST";

TEST(Environment, SetsReadsAndUnsets) {
    ASSERT_TRUE(unsetEnvironmentVariable(name));
    EXPECT_EQ(environmentVariable(name), std::nullopt);
    EXPECT_EQ(environmentText(name), std::nullopt);

    ASSERT_TRUE(setEnvironmentText(name, u"a\u00E4\U0001F600="));
    EXPECT_EQ(environmentVariable(name), "a\xC3\xA4\xF0\x9F\x98\x80=");
    ASSERT_TRUE(setEnvironmentVariable(name, "\xE2\x82\xAC"));
    EXPECT_EQ(environmentText(name), u"\u20AC");
    const std::u16string longText(5000, u'x');
    ASSERT_TRUE(setEnvironmentText(name, longText));
    EXPECT_EQ(environmentText(name), longText);

    ASSERT_TRUE(setEnvironmentVariable(name, ""));
    EXPECT_EQ(environmentVariable(name), "") << "empty isn't unset";
    ASSERT_TRUE(unsetEnvironmentVariable(name));
    EXPECT_EQ(environmentVariable(name), std::nullopt);
}

TEST(Environment, RefusesWhatItCannotHold) {
    EXPECT_FALSE(setEnvironmentVariable(name, std::string_view("a\0b", 3)));
    EXPECT_FALSE(setEnvironmentVariable("", "x"));
    EXPECT_FALSE(setEnvironmentVariable("A=B", "x"));
    EXPECT_EQ(environmentVariable(name), std::nullopt);
}

}  // namespace
}  // namespace brushwork::platform
