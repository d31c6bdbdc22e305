// znOS::LocalFileTransportFactory: names of the local file system, with or without "file:".
#pragma once

#include "foundation/files/file_factory.h"

namespace brushwork::znOS {

// Takes every name, so it comes last.
class LocalFileTransportFactory final : public FileTransportFactory {
  public:
    [[nodiscard]] std::unique_ptr<FileTransport> create(const znString::IString& name) override;
};

// The path behind a name. "file:" goes, and with it one slash where paths begin with a drive; where
// they begin with a slash, one stays: file:/tmp/x, file:///tmp/x and /tmp/x are one file.
[[nodiscard]] znString::IString localPath(const znString::IString& name, char16_t separator);

}  // namespace brushwork::znOS
