#include "platform/swap_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_calls_posix.h"

namespace brushwork::platform {

namespace {

int openFlags(PositionedFile::Mode mode) {
    switch (mode) {
        case PositionedFile::Mode::Read: return O_RDONLY | O_NONBLOCK;
        case PositionedFile::Mode::ReadWrite: return O_RDWR | O_NONBLOCK;
        case PositionedFile::Mode::CreateNew: return O_RDWR | O_CREAT | O_EXCL;
    }
    return O_RDONLY;
}

}  // namespace

bool PositionedFile::open(std::u16string_view path, Mode mode) {
    close();
    FileDescriptor file = openDescriptor(NativePath(path).text(), openFlags(mode), 0600);
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    handle_ = file.detach();
    return true;
}

bool PositionedFile::close() noexcept {
    if (handle_ == closed) return true;
    const int file = static_cast<int>(handle_);
    handle_ = closed;
    return ::close(file) == 0;
}

std::size_t PositionedFile::readAt(std::uint64_t offset, void* buffer, std::size_t count) {
    return readPlace(static_cast<int>(handle_), offset, buffer, count);
}

bool PositionedFile::writeAt(std::uint64_t offset, const void* bytes, std::size_t count) {
    return writePlace(static_cast<int>(handle_), offset, bytes, count);
}

std::uint64_t PositionedFile::size() const {
    struct stat status {};
    if (::fstat(static_cast<int>(handle_), &status) != 0) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

bool PositionedFile::resize(std::uint64_t size) {
    return ::ftruncate(static_cast<int>(handle_), static_cast<off_t>(size)) == 0;
}

}  // namespace brushwork::platform
