// znOS::FileTransport: what one kind of location does for znOS::File.
#pragma once

#include <sys/stat.h>

#include <vector>

#include "foundation/files/file_info.h"
#include "foundation/files/io_stream.h"

// A C library may put a macro over its own function of this name.
#undef stat

namespace brushwork::znOS {

// A transport stands for one path, open or not, and belongs to one thread at a time. What this base
// can't do for every kind of location answers NotImplemented.
class FileTransport : public IOStream {
  public:
    // `mode` is a set of OpenModeBit.
    [[nodiscard]] virtual znUtil::Error open(int mode) = 0;
    // Makes and opens a new file whose name begins like this path's; the path becomes its name.
    [[nodiscard]] virtual znUtil::Error openUnique(int mode);
    virtual znUtil::Error close() = 0;
    [[nodiscard]] virtual znUtil::Error makeDirectory() = 0;
    // Makes a directory of a random name beside this path, in the temporary directory for a path
    // without a directory of its own; the path becomes its name.
    [[nodiscard]] virtual znUtil::Error makeUniqueDirectory();
    // Makes the directory and those above it that are missing.
    [[nodiscard]] virtual znUtil::Error makeDirectoryPath();
    // Replaces `entries` by those of this directory, "." and ".." among them, each with the full
    // path in front unless names only are asked for.
    [[nodiscard]] virtual znUtil::Error list(std::vector<znString::IString>& entries,
                                             bool namesOnly) = 0;
    // Copies a file, or a directory with all it holds. An existing file is overwritten.
    [[nodiscard]] virtual znUtil::Error copyTo(FileTransport& target);
    // Copies, then removes the source: a directory that isn't empty stays, with
    // DirectoryNotEmpty.
    [[nodiscard]] virtual znUtil::Error moveTo(FileTransport& target);
    // Deletes a file, or an empty directory.
    virtual znUtil::Error remove() = 0;
    [[nodiscard]] virtual bool isDirectory() = 0;
    [[nodiscard]] virtual bool isOpen() const = 0;
    [[nodiscard]] virtual const znString::IString& path() const = 0;
    // Up to and including the last separator, or empty.
    [[nodiscard]] virtual znString::IString parentPath() const = 0;
    // What stands behind the last separator, or empty if there is none.
    [[nodiscard]] virtual znString::IString fileName() const = 0;
    [[nodiscard]] virtual char16_t separator() const = 0;
    [[nodiscard]] virtual znString::IString transportName() const = 0;
    // A path that leads nowhere is a success with `exists` false.
    [[nodiscard]] virtual znUtil::Error stat(FileInfo& info) = 0;
    // Owner and group.
    [[nodiscard]] virtual znUtil::Error statExtras(FileInfo& info);

  private:
    [[nodiscard]] znUtil::Error copyDirectoryTo(FileTransport& target);
    [[nodiscard]] znUtil::Error copyFileTo(FileTransport& target);
};

}  // namespace brushwork::znOS
