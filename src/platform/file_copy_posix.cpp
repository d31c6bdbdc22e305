// Whole blocks, copies, and the meaning of error numbers.

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <vector>

#include "platform/file_calls_posix.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t copyBlock = std::size_t{256} * 1024;

bool sameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool copyContents(const FileDescriptor& source, const struct stat& status, FileDescriptor& target,
                  bool created) {
    if (::ftruncate(target.get(), 0) != 0 && !created) return false;
    if (!copyDescriptor(source.get(), target.get())) return false;
    const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, status.st_mtim};
    (void)::futimens(target.get(), times.data());
    if (created && ::fchmod(target.get(), status.st_mode & 0777U) != 0) return false;
    return target.close();
}

}  // namespace

NativePath::NativePath(std::u16string_view path) {
    if (path.find(u'\0') == std::u16string_view::npos) text_ = toUtf8(path);
}

FileDescriptor openDescriptor(const std::string& path, int flags, unsigned int permissions) {
    int file = -1;
    do file = ::open(path.c_str(), flags | O_CLOEXEC, permissions);
    while (file < 0 && errno == EINTR);
    return FileDescriptor(file);
}

ssize_t readBlock(int file, void* buffer, std::size_t count) {
    auto* bytes = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t came = ::read(file, bytes + done, count - done);
        if (came < 0 && errno == EINTR) continue;
        if (came < 0) return -1;
        if (came == 0) break;
        done += static_cast<std::size_t>(came);
    }
    return static_cast<ssize_t>(done);
}

bool writeBlock(int file, const void* bytes, std::size_t count) {
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t went = ::write(file, next, count);
        if (went < 0 && errno == EINTR) continue;
        if (went <= 0) return false;
        next += went;
        count -= static_cast<std::size_t>(went);
    }
    return true;
}

bool copyDescriptor(int from, int to) {
    std::vector<char> block(copyBlock);
    while (true) {
        const ssize_t came = readBlock(from, block.data(), block.size());
        if (came <= 0) return came == 0;
        if (!writeBlock(to, block.data(), static_cast<std::size_t>(came))) return false;
    }
}

CallResult errnoResult(int error) {
    const auto textCode = static_cast<std::uint32_t>(error);
    switch (error) {
        case ENOENT:
        case ENOTDIR:
        case ENAMETOOLONG: return {errnoNoEntry, textCode};
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR: return {errnoNoAccess, textCode};
        case EEXIST: return {errnoExists, textCode};
        case EINVAL: return {errnoInvalid, textCode};
        case ENOTEMPTY: return {errnoNotEmpty, textCode};
        default: return {error, textCode};
    }
}

CallResult systemResult(int error) {
    constexpr int diskFull = 112;
    constexpr int generalFailure = 31;
    const auto textCode = static_cast<std::uint32_t>(error);
    switch (error) {
        case ENOENT: return {systemFileNotFound, textCode};
        case ENOTDIR:
        case ENAMETOOLONG: return {systemPathNotFound, textCode};
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR: return {systemAccessDenied, textCode};
        case EEXIST: return {systemFileExists, textCode};
        case ENOSPC: return {diskFull, textCode};
        default: return {generalFailure, textCode};
    }
}

CallResult copyFile(std::u16string_view from, std::u16string_view to, bool failIfExists) {
    const NativePath targetPath(to);
    const FileDescriptor source = openDescriptor(NativePath(from).text(), O_RDONLY | O_NONBLOCK);
    if (!source.isOpen()) return systemResult(errno);
    struct stat status {};
    if (::fstat(source.get(), &status) != 0) return systemResult(errno);
    if (!S_ISREG(status.st_mode)) return systemResult(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);

    FileDescriptor target = openDescriptor(targetPath.text(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    const bool created = target.isOpen();
    if (!created && errno == EEXIST && !failIfExists)
        target = openDescriptor(targetPath.text(), O_WRONLY);
    if (!target.isOpen()) {
        // The source was there, so what is missing is the way to the target.
        return errno == ENOENT ? CallResult{systemPathNotFound, ENOENT} : systemResult(errno);
    }
    struct stat old {};
    if (::fstat(target.get(), &old) != 0) return systemResult(errno);
    if (sameFile(status, old)) return systemResult(EINVAL);
    if (copyContents(source, status, target, created)) return {};
    const CallResult result = systemResult(errno);
    if (S_ISREG(old.st_mode)) (void)::unlink(targetPath.c_str());
    return result;
}

}  // namespace brushwork::platform
