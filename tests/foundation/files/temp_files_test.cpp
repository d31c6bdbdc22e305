#include "foundation/files/temp_files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <set>

#include "foundation/files/file.h"
#include "platform/file_calls.h"
#include "support/scratch_directory.h"

namespace brushwork::znOS {
namespace {

using namespace std::chrono_literals;
using znString::IString;

class TempFilesTest : public testing::Test {
  protected:
    TempFilesTest() { Filename::setTemporaryDirectory(IString(scratch_.path().u16string())); }
    ~TempFilesTest() override { Filename::setTemporaryDirectory(IString()); }
    void put(std::string_view name, std::chrono::seconds age) {
        const auto path = scratch_.put(name, "x");
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
    }
    ScratchDirectory scratch_;
};

TEST_F(TempFilesTest, NamesAreNewAndTellTheProcess) {
    const std::u16string process = IString(std::to_string(platform::processId())).view().data();
    std::set<std::u16string> seen;
    for (int round = 0; round < 100; ++round) {
        const Filename name = Filename::temporaryName(u"tmp", u"KVRxyz");
        EXPECT_EQ(name.directory().view(), scratch_.path().u16string());
        EXPECT_EQ(name.extension().view(), u"tmp");
        EXPECT_TRUE(name.baseName().beginsWith(u"KVR"));
        EXPECT_FALSE(name.baseName().beginsWith(u"KVRx"));
        EXPECT_TRUE(name.baseName().endsWith(process)) << name.path().toUtf8();
        EXPECT_TRUE(seen.insert(std::u16string(name.path().view())).second);
    }
    EXPECT_EQ(scratch_.entryCount(), 0U);
    EXPECT_TRUE(Filename::temporaryName(IString()).name().beginsWith(u"ZNT"));
    EXPECT_TRUE(Filename::temporaryName(IString()).extension().isEmpty());

    std::filesystem::create_directory(scratch_ / "d");
    const Filename inside = Filename::temporaryNameIn(IString(scratch_.name("d")), u"bak");
    EXPECT_EQ(inside.directory().view(), scratch_.name("d"));
    EXPECT_TRUE(inside.name().beginsWith(u"rec"));
    EXPECT_TRUE(Filename::temporaryNameIn(IString(scratch_.name("none")), u"bak").isEmpty());
    Filename::setTemporaryDirectory(IString(scratch_.name("none")));
    EXPECT_TRUE(Filename::temporaryName(u"tmp").isEmpty());
}

TEST_F(TempFilesTest, PatternsBeginAtTheirShortestName) {
    for (const char16_t* name : {u"qel123.unload", u"qelmaTempMesh.1", u"a.qx$", u"vox123out0",
                                 u"vox12345out9", u"vox123cmd7.bat"})
        EXPECT_TRUE(isSweptName(name)) << IString(name).toUtf8();
    for (const char16_t* name :
         {u"", u"qel12.unload", u"qelmaTempMesh.", u".qx$", u"vox12out0", u"vox12cmd7.bat",
          u"Qel123.unload", u"qel123.UNLOAD", u"xqelmaTempMesh.1", u"a.qx", u"a.qx$1",
          u"vox123outx", u"vox123ou10", u"vox123cmdx.bat", u"vox123cm17.bat", u"vox123cmd7.bax",
          u"vox1234out\u0661"})
        EXPECT_FALSE(isSweptName(name)) << IString(name).toUtf8();
}

TEST_F(TempFilesTest, TheSweepTakesOldFilesAlone) {
    put("just-old.qx$", 604800s + 30s);
    put("still-young.qx$", 604800s - 30s);
    put("qel123.unload", 700000s);
    put("qel12.unload", 700000s);
    put("other.txt", 700000s);
    std::filesystem::create_directory(scratch_ / "directory.qx$");
    std::error_code noTimesOfDirectories;
    std::filesystem::last_write_time(scratch_ / "directory.qx$",
                                     std::filesystem::file_time_type::clock::now() - 700000s,
                                     noTimesOfDirectories);
    EXPECT_EQ(Filename::sweepDirectory(IString(scratch_.path().u16string())), 2);
    EXPECT_EQ(scratch_.entryCount(), 4U);
    EXPECT_TRUE(std::filesystem::exists(scratch_ / "still-young.qx$"));
    EXPECT_TRUE(std::filesystem::exists(scratch_ / "qel12.unload"));
    put("voxabcout1", 700000s);
    EXPECT_EQ(Filename::sweepDirectory(IString(scratch_.name(""))), 1);
    EXPECT_EQ(Filename::sweepDirectory(IString(scratch_.name("none"))), 0);
}

TEST_F(TempFilesTest, TheCommonDirectoryIsSweptOnce) {
    const IString here(scratch_.path().u16string());
    std::filesystem::create_directory(scratch_ / "common");
    const auto putBoth = [&] {
        put("a.qx$", 700000s);
        put("common/a.qx$", 700000s);
    };
    putBoth();
    EXPECT_EQ(sweepDirectories(here, IString(scratch_.name("common"))), 2);
    putBoth();
    EXPECT_EQ(sweepDirectories(here, IString(scratch_.name("none"))), 1);
    EXPECT_EQ(sweepDirectories(here, here), 0);
    EXPECT_EQ(sweepDirectories(IString(scratch_.name("common/")), IString(scratch_.name("common"))),
              1);
}

TEST(TemporaryDirectory, ComesFromTheSystemUnlessOverridden) {
    EXPECT_EQ(Filename::temporaryDirectory().view(), platform::temporaryDirectory());
    Filename::setTemporaryDirectory(u"elsewhere");
    EXPECT_EQ(Filename::temporaryDirectory().view(), u"elsewhere");
    Filename::setTemporaryDirectory(IString());
    EXPECT_EQ(Filename::temporaryDirectory().view(), platform::temporaryDirectory());
}

}  // namespace
}  // namespace brushwork::znOS
