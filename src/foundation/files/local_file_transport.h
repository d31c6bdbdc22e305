// LocalFileTransport: files of the local file system.
#pragma once

#include <string>

#include "foundation/files/file_transport.h"
#include "platform/file_calls.h"

namespace brushwork::znOS {

// Holds the path as it was given; nothing is normalised but for a stat. Destroying it closes the
// stream.
class LocalFileTransport final : public FileTransport {
  public:
    explicit LocalFileTransport(const znString::IString& path);
    ~LocalFileTransport() override;

    [[nodiscard]] znUtil::Error read(void* buffer, std::size_t size, std::size_t& count,
                                     int flag = 0) override;
    // Nothing is left in a buffer: a full disk shows here, not at the close.
    [[nodiscard]] znUtil::Error write(const void* buffer, std::size_t size, std::size_t& count,
                                      int flag = 0) override;
    [[nodiscard]] znUtil::Error open(int mode) override;
    [[nodiscard]] znUtil::Error openUnique(int mode) override;
    znUtil::Error close() override;
    [[nodiscard]] znUtil::Error makeDirectory() override;
    [[nodiscard]] znUtil::Error makeUniqueDirectory() override;
    [[nodiscard]] znUtil::Error makeDirectoryPath() override;
    [[nodiscard]] znUtil::Error list(std::vector<znString::IString>& entries,
                                     bool namesOnly) override;
    [[nodiscard]] znUtil::Error moveTo(FileTransport& target) override;
    znUtil::Error remove() override;
    // A found answer is kept for the transport's life.
    [[nodiscard]] bool isDirectory() override;
    [[nodiscard]] bool isOpen() const override { return stream_ != nullptr; }
    [[nodiscard]] const znString::IString& path() const override { return path_; }
    [[nodiscard]] znString::IString parentPath() const override;
    [[nodiscard]] znString::IString fileName() const override;
    [[nodiscard]] char16_t separator() const override;
    [[nodiscard]] znString::IString transportName() const override;
    [[nodiscard]] znUtil::Error stat(FileInfo& info) override;
    [[nodiscard]] znUtil::Error statExtras(FileInfo& info) override;

  private:
    void setPath(const znString::IString& path);
    // Makes a unique file and opens it: an errno number, 0 for success.
    [[nodiscard]] int uniqueName(int mode, znString::IString& name);
    [[nodiscard]] znUtil::Error longPath(std::u16string& result) const;

    znString::IString path_;
    platform::FileStream stream_;  // null when closed
    bool directoryTested_ = false;
    bool directoryResult_ = false;
};

// The C mode text of a set of OpenModeBit: "rb", "wb", "rwb", "a+t"...
[[nodiscard]] std::string streamMode(int mode);
// What an errno number of an open means.
[[nodiscard]] znUtil::Error openError(int number);
// The form of an absolute path that lifts the system's limit of 260 units: "\\?\C:\..." or
// "\\?\UNC\server\...". Only backslash systems know it.
[[nodiscard]] std::u16string longPathForm(std::u16string_view absolute, char16_t separator);

}  // namespace brushwork::znOS
