// The helper's whole protocol, mostly in its own process, as a host meets it.
#include "bridge/bridge_entry.h"

#include <gtest/gtest.h>

#include "bridge_run.h"
#include "brushwork/host_call_table.h"

namespace brushwork {
namespace {

using test::makeRequest;
using test::picture;
using test::readBytes;
using test::runRequest;
using test::takePixels;
using test::TempFolder;
using test::Where;
using test::wide;
using test::writeBytes;

TEST(BridgeEntry, FindsTheFirstUsableFileSwitch) {
    EXPECT_EQ(requestPathFrom({u"h", u"/file", u"a"}), u"a");
    EXPECT_EQ(requestPathFrom({u"h", u"x", u"/FiLe", u"a b", u"/file", u"c"}), u"a b");
    EXPECT_EQ(requestPathFrom({u"h", u"/file", u"/file", u"a"}), u"/file");
    EXPECT_EQ(requestPathFrom({u"h", u"-file", u"a"}), u"");
    EXPECT_EQ(requestPathFrom({u"h", u"/files", u"a"}), u"");
    EXPECT_EQ(requestPathFrom({u"h", u"a"}), u"");
    EXPECT_EQ(requestPathFrom({u"h", u"a", u"/file"}), u"");
    EXPECT_EQ(requestPathFrom({u"/file", u"a"}), u"") << "the program's own name is no switch";
    EXPECT_EQ(requestPathFrom({}), u"");
}

TEST(BridgeEntry, EndsWithMinusOneWithoutARequest) {
    TempFolder folder;
    writeBytes(folder.file("short"), std::vector<std::uint8_t>(1799));
    const std::u16string helper = platform::fromUtf8(BRUSHWORK_HELPER);
    const auto end = [&](const std::vector<std::u16string>& arguments) {
        const auto result = platform::runProcess(helper, arguments);
        EXPECT_TRUE(result.started);
        return result.exitValue;
    };
    EXPECT_EQ(end({}), -1);
    EXPECT_EQ(end({u"/file"}), -1);
    EXPECT_EQ(end({u"/file", u""}), -1);
    EXPECT_EQ(end({u"/file", platform::fromUtf8(folder.file("missing"))}), -1);
    EXPECT_EQ(end({u"/file", platform::fromUtf8(folder.file("short"))}), -1);
}

TEST(BridgeEntry, UnknownCommandAnswersAnEmptyRecord) {
    TempFolder folder;
    for (const char* command : {"SaveToClipboard", "", "GetSizes"}) {
        auto request = makeRequest(command, picture("rocket.jpg"), folder.file("answer"));
        request.setSize(5, 6);
        const auto run = runRequest(folder, request, Where::OwnProcess);
        EXPECT_EQ(run.exitValue, 1) << command;
        ASSERT_TRUE(run.response) << command;
        EXPECT_EQ(run.response->params.width, 0);
        EXPECT_EQ(run.response->params.channels, 0);
        EXPECT_EQ(fieldText(run.response->command), u"");
        EXPECT_EQ(fieldText(run.response->pixelsPath), u"");
    }
}

TEST(BridgeEntry, ServesARecordWithATailAndAPathWithABlank) {
    TempFolder folder;
    std::filesystem::create_directory(folder.file("with a blank"));
    const std::string image = folder.file("with a blank/pict\xC3\xBCre 1.jpg");
    std::filesystem::copy_file(picture("rocket.jpg"), image);
    const auto request = makeRequest("getsize", image, folder.file("with a blank/answer"));
    const std::string path = folder.file("with a blank/the request");
    ASSERT_TRUE(writeRecord(wide(path), request));
    auto bytes = readBytes(path);
    bytes.push_back(1);
    writeBytes(path, bytes);
    const auto result = platform::runProcess(platform::fromUtf8(BRUSHWORK_HELPER),
                                             {u"/FILE", platform::fromUtf8(path), u"/file", u"b"});
    EXPECT_EQ(result.exitValue, 1);
    RequestRecord response;
    ASSERT_TRUE(readRecord(wide(folder.file("with a blank/answer")), response));
    EXPECT_EQ(response.params.width, 640);
    EXPECT_EQ(response.params.height, 427);
    EXPECT_EQ(response.params.channels, 4);
    EXPECT_EQ(fieldText(response.format), u"") << "only opening tells the format";
    EXPECT_TRUE(std::filesystem::exists(path)) << "the request file is the client's";
}

TEST(BridgeEntry, FailedCommandLeavesNothing) {
    TempFolder folder;
    for (const char* name : {"shortfile.bmp", "reallybig.bmp", "broken-truncated.gif",
                             "broken-truncated-baseline.jpg", "xcsn0g01.png", "no-such-file"}) {
        const auto run =
            runRequest(folder, makeRequest("OpenFromFile", picture(name), folder.file("answer")),
                       Where::OwnProcess);
        EXPECT_EQ(run.exitValue, -1) << name;
        EXPECT_FALSE(run.response) << name;
        EXPECT_TRUE(folder.leftovers().empty()) << name << ": " << folder.leftovers()[0];
    }
}

TEST(BridgeEntry, PixelsGoWhenTheAnswerCannotBeLeft) {
    TempFolder folder;
    for (const Where where : {Where::InProcess, Where::OwnProcess}) {
        const auto run = runRequest(
            folder,
            makeRequest("OpenFromFile", picture("rocket.jpg"), folder.file("no/such/folder")),
            where);
        EXPECT_EQ(run.exitValue, 1);
        EXPECT_TRUE(folder.leftovers().empty());
    }
}

TEST(BridgeEntry, ClearsTheHostTable) {
    TempFolder folder;
    hostCallTable().debugLevel = [] { return std::int32_t{1}; };
    constexpr std::size_t last = std::size(HostCallTable{}.reserved) - 1;
    hostCallTable().reserved[last] = [] {};
    runRequest(folder, makeRequest("GetSize", picture("rocket.jpg"), folder.file("answer")));
    EXPECT_EQ(hostCallTable().debugLevel, nullptr);
    EXPECT_EQ(hostCallTable().reserved[last], nullptr);
}

// Limits come from the environment; a picture over the limit is refused before it costs anything.
TEST(BridgeEntry, KeepsItsLimits) {
    TempFolder folder;
    const auto request = makeRequest("OpenFromFile", picture("rocket.jpg"), folder.file("answer"));
    ::setenv("INKATELIER_BRIDGE_PIXELS_MIB", "1", 1);  // 640 x 427 x 4 is a little over 1 MiB
    EXPECT_EQ(runRequest(folder, request, Where::OwnProcess).exitValue, -1);
    ::setenv("INKATELIER_BRIDGE_PIXELS_MIB", "2", 1);
    const auto run = runRequest(folder, request, Where::OwnProcess);
    ::unsetenv("INKATELIER_BRIDGE_PIXELS_MIB");
    ASSERT_EQ(run.exitValue, 1);
    EXPECT_EQ(takePixels(*run.response).size(), 640U * 427U * 4U);
    EXPECT_TRUE(folder.leftovers().empty());
}

}  // namespace
}  // namespace brushwork
