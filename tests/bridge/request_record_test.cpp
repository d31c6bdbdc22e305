#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "bridge_run.h"

namespace brushwork {
namespace {

using test::readBytes;
using test::TempFolder;
using test::wide;
using test::writeBytes;

TEST(RequestRecord, LiesInTheFileAsTheFormatSays) {
    TempFolder folder;
    RequestRecord record;
    record.setSize(0x01020304, -2);
    record.setChannels(4);
    record.setQuality(true, 90);
    record.setResolutionUnit(DotsPerCentimetre);
    record.setResolution(118.11, 0.5);
    ASSERT_TRUE(record.setCommand(wide("GetSize")));
    ASSERT_TRUE(record.setFormat(wide("PNG")));
    ASSERT_TRUE(record.setResponsePath(wide("r")));
    ASSERT_TRUE(record.setPixelsPath(wide("p")));
    ASSERT_TRUE(record.setImagePath(znString::IString(u"\u00e4\U0001F58C")));
    ASSERT_TRUE(writeRecord(wide(folder.file("r")), record));
    const auto bytes = readBytes(folder.file("r"));
    ASSERT_EQ(bytes.size(), 1800U);

    const auto at = [&](std::size_t offset, std::vector<std::uint8_t> expected) {
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin() + long(offset)))
            << "at offset " << offset;
    };
    at(0, {4, 3, 2, 1, 0xFE, 0xFF, 0xFF, 0xFF, 4, 0, 0, 0, 1});
    at(16, {90, 0, 0, 0, 3, 0, 0, 0});
    at(32, {0, 0, 0, 0, 0, 0, 0xE0, 0x3F});
    at(40, {'G', 0, 'e', 0, 't', 0, 'S', 0, 'i', 0, 'z', 0, 'e', 0, 0, 0});
    at(140, {'P', 0, 'N', 0, 'G', 0, 0, 0});
    at(240, {'r', 0, 0, 0});
    at(760, {'p', 0, 0, 0});
    at(1280, {0xE4, 0, 0x3D, 0xD8, 0x8C, 0xDD, 0, 0});
    double x = 0.0;
    std::memcpy(&x, bytes.data() + 24, sizeof x);
    EXPECT_EQ(x, 118.11);
}

TEST(RequestRecord, SetterRefusesTextThatDoesNotFitAndKeepsTheField) {
    RequestRecord record;
    const std::u16string fits(RequestRecord::nameUnits - 1, u'a');
    EXPECT_TRUE(record.setCommand(znString::IString(std::u16string_view(fits))));
    EXPECT_FALSE(record.setCommand(znString::IString(std::u16string_view(fits + u"b"))));
    EXPECT_EQ(fieldText(record.command), fits);

    const std::u16string path(RequestRecord::pathUnits - 1, u'p');
    EXPECT_TRUE(record.setImagePath(znString::IString(std::u16string_view(path))));
    EXPECT_FALSE(record.setImagePath(znString::IString(std::u16string_view(path + u"p"))));
    EXPECT_EQ(fieldText(record.imagePath), path);
}

TEST(RequestRecord, FieldWithoutTerminatorEndsAtItsEnd) {
    RequestRecord record;
    std::fill(std::begin(record.format), std::end(record.format), u'x');
    std::fill(std::begin(record.responsePath), std::end(record.responsePath), u'y');
    EXPECT_EQ(fieldText(record.format).size(), RequestRecord::nameUnits);
    EXPECT_EQ(fieldText(record.responsePath).size(), RequestRecord::pathUnits);
}

TEST(RequestRecord, FileMayBeLongerButNotShorter) {
    TempFolder folder;
    RequestRecord record;
    for (const std::size_t size : {1799U, 1800U, 1801U}) {
        writeBytes(folder.file("r"), std::vector<std::uint8_t>(size, 7));
        EXPECT_EQ(readRecord(wide(folder.file("r")), record), size >= 1800) << size;
    }
    EXPECT_FALSE(readRecord(wide(folder.file("missing")), record));
    EXPECT_FALSE(readRecord(wide(""), record));
    EXPECT_FALSE(writeRecord(wide(folder.file("no/such/folder")), record));
}

}  // namespace
}  // namespace brushwork
