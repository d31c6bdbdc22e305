// znOS::FileFactory: which transport serves which name.
#pragma once

#include <memory>

#include "brushwork/i_string.h"

namespace brushwork::znOS {

class File;
class FileTransport;

// Makes transports for one kind of location.
class FileTransportFactory {
  public:
    virtual ~FileTransportFactory() = default;
    // Null if the name isn't of this kind.
    [[nodiscard]] virtual std::unique_ptr<FileTransport> create(const znString::IString& name) = 0;
};

// Asks the added factories in order of addition, then the local file system. Adding is for the
// start of the process, before there are threads.
class FileFactory {
  public:
    virtual ~FileFactory() = default;
    // A file around the name's transport, or null if there is none.
    [[nodiscard]] virtual std::unique_ptr<File> createFile(const znString::IString& name) = 0;
    [[nodiscard]] virtual std::unique_ptr<FileTransport> createTransport(
        const znString::IString& name) = 0;
    virtual void addFactory(std::unique_ptr<FileTransportFactory> factory) = 0;

    // The one factory of the process, built on first use.
    [[nodiscard]] static FileFactory& instance();
};

}  // namespace brushwork::znOS
