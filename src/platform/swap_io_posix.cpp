#include "platform/swap_io.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_calls_posix.h"

namespace brushwork::platform {

namespace {

int openFlags(PositionedFile::Mode mode) {
    switch (mode) {
        case PositionedFile::Mode::Read: return O_RDONLY | O_NONBLOCK;
        case PositionedFile::Mode::ReadWrite: return O_RDWR | O_NONBLOCK;
        case PositionedFile::Mode::CreateNew:
        case PositionedFile::Mode::CreateOwned: return O_RDWR | O_CREAT | O_EXCL;
    }
    return O_RDONLY;
}

bool isLocked(int file) {
    return ::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

// The lock goes with the last descriptor, however the process ends. Somebody who looked for
// abandoned files between the making and the lock may hold or have removed it: then it isn't ours.
// A system without locks has no removing either.
bool own(int file) {
    struct stat status {};
    if (!isLocked(file) && ::fstat(file, &status) == 0 && status.st_nlink > 0) return true;
    errno = EEXIST;
    return false;
}

// Where the locks of all machines that see the file are known to this one.
bool isOnThisMachine(int file) {
    struct statfs place {};
    if (::fstatfs(file, &place) != 0) return false;
    constexpr unsigned xfs = 0x58465342, zfs = 0x2FC12FC1;
    switch (static_cast<unsigned>(place.f_type)) {
        case EXT4_SUPER_MAGIC:
        case TMPFS_MAGIC:
        case BTRFS_SUPER_MAGIC:
        case F2FS_SUPER_MAGIC:
        case OVERLAYFS_SUPER_MAGIC:
        case xfs:
        case zfs: return true;
        default: return false;
    }
}

}  // namespace

bool PositionedFile::open(std::u16string_view path, Mode mode) {
    close();
    FileDescriptor file = openDescriptor(NativePath(path).text(), openFlags(mode), 0600);
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    if (mode == Mode::CreateOwned && !own(file.get())) return false;
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

bool removeIfAbandoned(std::u16string_view path) {
    const NativePath native(path);
    const FileDescriptor file = openDescriptor(native.text(), O_RDWR | O_NONBLOCK | O_NOFOLLOW);
    struct stat opened {
    }, named{};
    if (!file.isOpen() || ::fstat(file.get(), &opened) != 0) return false;
    if (opened.st_mode != (S_IFREG | 0600) || opened.st_uid != ::geteuid() || opened.st_nlink != 1)
        return false;
    if (!isOnThisMachine(file.get()) || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return false;
    // The name may have come to stand for another file before the lock was had.
    if (::lstat(native.c_str(), &named) != 0 || named.st_dev != opened.st_dev ||
        named.st_ino != opened.st_ino)
        return false;
    return ::unlink(native.c_str()) == 0;
}

}  // namespace brushwork::platform
