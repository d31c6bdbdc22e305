// znOS::File: the file object that callers hold.
//
//     File file(path);
//     if (file.open(readBinary).failed()) ...
//     std::size_t count = 0;
//     Error error = file.read(buffer, size, count);
//
// Every operation answers an Error and nothing throws. A file belongs to one thread at a time;
// destroying it closes it.
#pragma once

#include <memory>
#include <vector>

#include "brushwork/filename.h"
#include "foundation/files/file_info.h"
#include "foundation/files/file_transport.h"
#include "foundation/files/io_stream.h"

namespace brushwork::znOS {

enum class Overwrite { No, Yes };

class File final : public IOStream {
  public:
    // Asks the factory for a transport. Without one the file stays unusable: opening answers
    // FileIsOpen, closing FileNotOpen, listing NotADirectory, all else NotImplemented.
    explicit File(const znString::IString& name);
    explicit File(const Filename& name);
    explicit File(std::unique_ptr<FileTransport> transport);
    ~File() override;

    // FileIsOpen if it already is. `mode` is a set of OpenModeBit: readBinary, writeBinary...
    [[nodiscard]] znUtil::Error open(int mode);
    // Opens a new file whose name begins like this one's; path() tells it afterwards.
    [[nodiscard]] znUtil::Error openUnique(int mode);
    znUtil::Error close();  // FileNotOpen if it isn't
    // `count` receives the number of bytes moved. Reading answers EndOfFile when the end was met,
    // together with the bytes that arrived.
    [[nodiscard]] znUtil::Error read(void* buffer, std::size_t size, std::size_t& count,
                                     int flag = 0) override;
    [[nodiscard]] znUtil::Error write(const void* buffer, std::size_t size, std::size_t& count,
                                      int flag = 0) override;
    [[nodiscard]] znUtil::Error stat(FileInfo& info, bool withOwner = false);
    // Replaces `entries`; NotADirectory if this is none. "." and ".." are among them.
    [[nodiscard]] znUtil::Error list(std::vector<znString::IString>& entries,
                                     bool namesOnly = false);
    [[nodiscard]] bool isOpen() const;
    // Empty if there is no transport.
    [[nodiscard]] znString::IString path() const;
    // Null if there is none.
    [[nodiscard]] FileTransport* transport() const { return transport_.get(); }

    // The tests answer false on any failure; `error`, if given, says which.
    [[nodiscard]] static bool exists(const znString::IString& name, znUtil::Error* error = nullptr);
    [[nodiscard]] static bool exists(const Filename& name, znUtil::Error* error = nullptr);
    [[nodiscard]] static bool isDirectory(const znString::IString& name,
                                          znUtil::Error* error = nullptr);
    [[nodiscard]] static bool isDirectory(const Filename& name, znUtil::Error* error = nullptr);
    [[nodiscard]] static bool isFile(const znString::IString& name, znUtil::Error* error = nullptr);
    [[nodiscard]] static bool isFile(const Filename& name, znUtil::Error* error = nullptr);
    static znUtil::Error remove(const znString::IString& name);
    static znUtil::Error remove(const Filename& name);
    // Files and whole directories; files that are there already are overwritten.
    [[nodiscard]] static znUtil::Error copy(const znString::IString& source,
                                            const znString::IString& target);
    [[nodiscard]] static znUtil::Error copy(const Filename& source, const Filename& target);
    // Within one directory a rename, which never overwrites (all its failures have code 6); else a
    // copy by the system and a removal (codes 2: no source; 3: the target exists; 1: other).
    [[nodiscard]] static znUtil::Error move(const Filename& source, const Filename& target,
                                            Overwrite overwrite = Overwrite::No);

  private:
    std::unique_ptr<FileTransport> transport_;
};

}  // namespace brushwork::znOS
