#include "foundation/files/file_transport.h"

#include <gtest/gtest.h>

#include "foundation/files/file.h"
#include "foundation/files/file_factory_impl.h"
#include "foundation/files/local_file_transport.h"
#include "support/scratch_directory.h"

namespace brushwork::znOS {
namespace {

using znString::IString;
using znUtil::Error;

// A location of another kind, which can do nothing but tell its name.
class OtherTransport final : public FileTransport {
  public:
    OtherTransport(IString path, int tag) : path_(std::move(path)), tag_(tag) {}
    Error read(void*, std::size_t, std::size_t&, int) override { return znUtil::IoProblem; }
    Error write(const void*, std::size_t, std::size_t&, int) override { return znUtil::IoProblem; }
    Error open(int) override { return znUtil::NoWritePermission; }
    Error close() override { return {}; }
    Error makeDirectory() override { return znUtil::IoProblem; }
    Error list(std::vector<IString>&, bool) override { return {}; }
    Error remove() override { return {}; }
    bool isDirectory() override { return false; }
    bool isOpen() const override { return false; }
    const IString& path() const override { return path_; }
    IString parentPath() const override { return {}; }
    IString fileName() const override { return {}; }
    char16_t separator() const override { return u'/'; }
    IString transportName() const override { return IString(u"OtherTransport"); }
    Error stat(FileInfo& info) override {
        info = {};
        return {};
    }

    [[nodiscard]] int tag() const { return tag_; }

  private:
    IString path_;
    int tag_;
};

class OtherFactory final : public FileTransportFactory {
  public:
    OtherFactory(std::u16string prefix, int tag) : prefix_(std::move(prefix)), tag_(tag) {}
    std::unique_ptr<FileTransport> create(const IString& name) override {
        if (!name.beginsWith(prefix_)) return nullptr;
        return std::make_unique<OtherTransport>(name, tag_);
    }

  private:
    std::u16string prefix_;
    int tag_;
};

class FileTransportTest : public testing::Test {
  protected:
    ~FileTransportTest() override { resetFileFactory(); }
    LocalFileTransport local(std::string_view name) {
        return LocalFileTransport(IString(scratch_.name(name)));
    }
    ScratchDirectory scratch_;
};

TEST_F(FileTransportTest, FactoriesAreAskedInOrderOfAddition) {
    FileFactory& factory = FileFactory::instance();
    factory.addFactory(std::make_unique<OtherFactory>(u"net:", 1));
    factory.addFactory(std::make_unique<OtherFactory>(u"n", 2));
    const auto tagOf = [&](const char16_t* name) {
        const auto transport = factory.createTransport(IString(name));
        const auto* other = dynamic_cast<OtherTransport*>(transport.get());
        return other ? other->tag() : 0;
    };
    EXPECT_EQ(tagOf(u"net:x"), 1);
    EXPECT_EQ(tagOf(u"news"), 2);
    EXPECT_EQ(tagOf(u"old"), 0);
    EXPECT_EQ(factory.createFile(IString(u"net:x"))->path().view(), u"net:x");
    EXPECT_EQ(factory.createTransport(IString(u"old"))->transportName().view(),
              u"LocalFileTransport");
    resetFileFactory();
    EXPECT_EQ(tagOf(u"net:x"), 0);
}

TEST_F(FileTransportTest, TheBaseDeclinesWhatItCannotDo) {
    OtherTransport other(u"net:x", 0);
    FileInfo info;
    EXPECT_EQ(other.openUnique(42), Error(1, u"This function is not implemented. mode=42"));
    EXPECT_EQ(other.makeUniqueDirectory(), Error(1, u"This function is not implemented."));
    EXPECT_EQ(other.makeDirectoryPath(), Error(1, u"This function is not implemented."));
    EXPECT_EQ(other.statExtras(info), Error(1, u"This function still not supported."));
}

TEST_F(FileTransportTest, CopiesFilesOfAllSizes) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 12288U, 100001U}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 % 251);
        scratch_.put("from", bytes);
        scratch_.put("to", "something that is longer than the shortest of them");
        LocalFileTransport from = local("from");
        LocalFileTransport to = local("to");
        EXPECT_EQ(from.copyTo(to).code(), 0);
        EXPECT_FALSE(from.isOpen() || to.isOpen());
        EXPECT_EQ(scratch_.get("to"), bytes) << size;
    }
}

TEST_F(FileTransportTest, CopyRefusesOpenSidesAndItself) {
    scratch_.put("a", "A");
    LocalFileTransport a = local("a");
    LocalFileTransport same = local("a");
    LocalFileTransport b = local("b");
    EXPECT_EQ(a.copyTo(same).code(), 9);
    ASSERT_EQ(a.open(readBinary).code(), 0);
    EXPECT_EQ(a.copyTo(b).code(), 9);
    EXPECT_EQ(b.copyTo(a).code(), 9);
    EXPECT_EQ(a.moveTo(b).code(), 9);
    EXPECT_FALSE(std::filesystem::exists(scratch_ / "b"));
    ASSERT_EQ(a.close().code(), 0);
    OtherTransport closed(u"net:x", 0);
    EXPECT_EQ(a.copyTo(closed).code(), 5);  // the target's own error comes through
    LocalFileTransport none = local("none");
    EXPECT_EQ(none.copyTo(b).code(), 18);
}

TEST_F(FileTransportTest, CopiesTrees) {
    std::filesystem::create_directories(scratch_ / "src/one/two");
    std::filesystem::create_directories(scratch_ / "dst/one");
    scratch_.put("src/a", "A");
    scratch_.put("src/one/b", "B");
    scratch_.put("src/one/two/c", "C");
    scratch_.put("dst/one/b", "old");
    scratch_.put("dst/one/kept", "K");
    LocalFileTransport source = local("src");
    LocalFileTransport target = local("dst");
    EXPECT_EQ(source.copyTo(target).code(), 0);
    EXPECT_EQ(scratch_.get("dst/a"), "A");
    EXPECT_EQ(scratch_.get("dst/one/b"), "B");
    EXPECT_EQ(scratch_.get("dst/one/two/c"), "C");
    EXPECT_EQ(scratch_.get("dst/one/kept"), "K");
    LocalFileTransport nowhere = local("no/where");
    EXPECT_EQ(source.copyTo(nowhere).code(), 4);
    // Into itself: what is there before the copy is copied, and it ends.
    LocalFileTransport inside = local("src/inside");
    EXPECT_EQ(source.copyTo(inside).code(), 0);
    EXPECT_EQ(scratch_.get("src/inside/one/two/c"), "C");
    EXPECT_FALSE(std::filesystem::exists(scratch_ / "src/inside/inside"));
}

TEST_F(FileTransportTest, MovesByRenamingOrCopying) {
    scratch_.put("a", "A");
    scratch_.put("b", "B");
    std::filesystem::create_directories(scratch_ / "d/sub");
    std::filesystem::create_directory(scratch_ / "e");
    LocalFileTransport a = local("a");
    LocalFileTransport b = local("b");
    LocalFileTransport c = local("c");
    LocalFileTransport d = local("d");
    LocalFileTransport e = local("e");
    LocalFileTransport f = local("f");
    EXPECT_EQ(c.moveTo(a).code(), 2);
    EXPECT_EQ(a.moveTo(c).code(), 0);
    EXPECT_EQ(scratch_.get("c"), "A");
    EXPECT_EQ(c.moveTo(b).code(), 0);
    EXPECT_EQ(scratch_.get("b"), "A");
    EXPECT_FALSE(std::filesystem::exists(scratch_ / "c"));
    EXPECT_EQ(d.moveTo(f).code(), 0);
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "f/sub"));
    // Onto a directory that is there: copied into it, and the source, not being empty, stays.
    EXPECT_EQ(f.moveTo(e).code(), 13);
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "e/sub"));
    EXPECT_TRUE(std::filesystem::is_directory(scratch_ / "f/sub"));
    // A file doesn't become a directory.
    EXPECT_EQ(b.moveTo(e).code(), 4);
    EXPECT_EQ(scratch_.get("b"), "A");
    OtherTransport other(u"net:x", 0);
    EXPECT_EQ(b.moveTo(other).code(), 5);
    OtherTransport same(u"net:x", 0);
    EXPECT_EQ(other.moveTo(same).code(), 7);
}

TEST_F(FileTransportTest, PathsComeApartAtTheLastSeparator) {
    const std::u16string separator(1, Filename::defaultSeparator());
    LocalFileTransport t{IString(u"a" + separator + u"b" + separator + u"c.d")};
    EXPECT_EQ(t.parentPath().view(), u"a" + separator + u"b" + separator);
    EXPECT_EQ(t.fileName().view(), u"c.d");
    LocalFileTransport bare{IString(u"c.d")};
    EXPECT_TRUE(bare.parentPath().isEmpty());
    EXPECT_TRUE(bare.fileName().isEmpty());
}

TEST_F(FileTransportTest, LongPathsGetTheirPrefix) {
    EXPECT_EQ(longPathForm(u"C:\\a", u'\\'), u"\\\\?\\C:\\a");
    EXPECT_EQ(longPathForm(u"\\\\server\\share\\a", u'\\'), u"\\\\?\\UNC\\server\\share\\a");
}

}  // namespace
}  // namespace brushwork::znOS
