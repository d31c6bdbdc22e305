// FileFactoryImpl: the file factory of the process.
#pragma once

#include <vector>

#include "foundation/files/file_factory.h"
#include "foundation/files/local_file_transport_factory.h"
#include "foundation/services/initializer.h"

namespace brushwork::znOS {

class FileFactoryImpl final : public FileFactory {
  public:
    [[nodiscard]] std::unique_ptr<File> createFile(const znString::IString& name) override;
    [[nodiscard]] std::unique_ptr<FileTransport> createTransport(
        const znString::IString& name) override;
    void addFactory(std::unique_ptr<FileTransportFactory> factory) override;
    // Forgets the added factories.
    void reset();

  private:
    std::vector<std::unique_ptr<FileTransportFactory>> added_;
    LocalFileTransportFactory local_;
};

// Puts the process's factory back to its first state; for tests.
void resetFileFactory();

// Builds the factory at start.
class FileFactoryInitializer final : public znUtil::Initializer {
  public:
    FileFactoryInitializer();
    void initialize(znUtil::Error& error) override;
};

}  // namespace brushwork::znOS
