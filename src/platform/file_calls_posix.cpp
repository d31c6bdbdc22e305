#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <limits>

#include "platform/file_calls_posix.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

CallResult resultOf(int returned) {
    return returned == 0 ? CallResult{} : errnoResult(errno);
}

FileKind kindOf(unsigned int mode) {
    if (S_ISDIR(mode)) return FileKind::Directory;
    return S_ISREG(mode) ? FileKind::File : FileKind::Other;
}

// For file systems that can't rename without overwriting in one step.
int renameAfterTest(const char* from, const char* to) {
    struct stat found {};
    if (::lstat(to, &found) == 0) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(from, to);
}

struct StreamRequest {
    int flags = 0;
    const char* mode = nullptr;  // null for a mode that makes no sense
};

StreamRequest streamRequest(std::string_view mode) {
    const char first = mode.empty() ? '\0' : mode[0];
    const bool both = mode.size() > 1 && mode[1] == '+';
    const int direction = both ? O_RDWR : O_WRONLY;
    switch (first) {
        case 'r': return both ? StreamRequest{O_RDWR, "r+"} : StreamRequest{O_RDONLY, "r"};
        case 'w': return {direction | O_CREAT | O_TRUNC, both ? "w+" : "w"};
        case 'a': return {direction | O_CREAT | O_APPEND, both ? "a+" : "a"};
        default: return {};
    }
}

}  // namespace

char16_t pathSeparator() {
    return u'/';
}

std::u16string systemErrorText(std::uint32_t textCode) {
    if (textCode > INT_MAX) return {};
    const char* text = ::strerrordesc_np(static_cast<int>(textCode));
    return text ? fromUtf8(text) : std::u16string();
}

FileStream openStream(std::u16string_view path, std::string_view mode, int& number) {
    const StreamRequest request = streamRequest(mode);
    if (!request.mode) {
        number = errnoInvalid;
        return nullptr;
    }
    FileDescriptor file = openDescriptor(NativePath(path).text(), request.flags);
    if (!file.isOpen()) {
        number = errnoResult(errno).number;
        return nullptr;
    }
    struct stat found {};
    if (::fstat(file.get(), &found) == 0 && S_ISDIR(found.st_mode)) {
        number = errnoNoAccess;
        return nullptr;
    }
    FileStream stream(::fdopen(file.get(), request.mode));
    number = stream ? 0 : errnoResult(errno).number;
    if (stream) (void)file.detach();
    return stream;
}

CallResult statFile(std::u16string_view path, FileStatus& status) {
    struct statx found {};
    const NativePath native(path);
    if (::statx(AT_FDCWD, native.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &found) != 0)
        return errnoResult(errno);
    status.kind = kindOf(found.stx_mode);
    status.size = found.stx_size;
    status.modified = found.stx_mtime.tv_sec;
    const bool born = (found.stx_mask & STATX_BTIME) != 0;
    status.created = born ? found.stx_btime.tv_sec : found.stx_ctime.tv_sec;
    return {};
}

CallResult renameFile(std::u16string_view from, std::u16string_view to) {
    const NativePath source(from);
    const NativePath target(to);
    if (source.text() == target.text()) {
        struct stat found {};
        return resultOf(::lstat(source.c_str(), &found));
    }
    int result = ::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE);
    if (result != 0 && (errno == EINVAL || errno == ENOSYS))
        result = renameAfterTest(source.c_str(), target.c_str());
    return resultOf(result);
}

CallResult unlinkFile(std::u16string_view path) {
    return resultOf(::unlink(NativePath(path).c_str()));
}

CallResult removeDirectory(std::u16string_view path) {
    const NativePath native(path);
    if (::rmdir(native.c_str()) == 0) return {};
    const int error = errno;
    struct stat found {};
    // A link to a directory goes like a directory, and what it leads to stays.
    if (error == ENOTDIR && ::lstat(native.c_str(), &found) == 0 && S_ISLNK(found.st_mode))
        return resultOf(::unlink(native.c_str()));
    return errnoResult(error);
}

CallResult makeDirectory(std::u16string_view path) {
    return resultOf(::mkdir(NativePath(path).c_str(), 0777));
}

bool accessFile(std::u16string_view path, int access) {
    const int wanted = ((access & accessRead) ? R_OK : 0) | ((access & accessWrite) ? W_OK : 0);
    return ::access(NativePath(path).c_str(), wanted) == 0;
}

bool workingDirectory(std::u16string& path, std::size_t room) {
    std::error_code error;
    const std::filesystem::path current = std::filesystem::current_path(error);
    if (error) return false;
    std::u16string found = fromUtf8(current.native());
    if (found.size() >= room) return false;
    path = std::move(found);
    return true;
}

CallResult fullPath(std::u16string_view path, std::u16string& result) {
    const NativePath native(path);
    if (native.text().empty()) return systemResult(ENOENT);
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(native.text(), error);
    if (error) return systemResult(error.value());
    result = fromUtf8(absolute.lexically_normal().native());
    return {};
}

std::uint32_t processId() {
    return static_cast<std::uint32_t>(::getpid());
}

std::int64_t fileClock() {
    return ::time(nullptr);
}

namespace {

// Whether all bytes of a block have places that the system can address.
bool inRange(std::uint64_t offset, std::size_t count) {
    constexpr auto end = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    return offset <= end && count <= end - offset;
}

}  // namespace

std::size_t readPlace(int file, std::uint64_t offset, void* buffer, std::size_t count) {
    if (!inRange(offset, count)) return 0;
    auto* bytes = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const auto place = static_cast<off_t>(offset + done);
        const ssize_t came = ::pread(file, bytes + done, count - done, place);
        if (came < 0 && errno == EINTR) continue;
        if (came <= 0) break;
        done += static_cast<std::size_t>(came);
    }
    return done;
}

bool writePlace(int file, std::uint64_t offset, const void* bytes, std::size_t count) {
    if (!inRange(offset, count)) return false;
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t went = ::pwrite(file, next, count, static_cast<off_t>(offset));
        if (went < 0 && errno == EINTR) continue;
        if (went <= 0) return false;
        next += went;
        offset += static_cast<std::uint64_t>(went);
        count -= static_cast<std::size_t>(went);
    }
    return true;
}

}  // namespace brushwork::platform
