#include "platform/file_calls_win32.h"

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace brushwork::platform {

namespace {

// Of a call of the C runtime that answers 0 for success.
CallResult resultOf(int returned) {
    if (returned == 0) return {};
    return {errno == 0 ? -1 : errno, static_cast<std::uint32_t>(::GetLastError())};
}

FileKind kindOf(unsigned int mode) {
    switch (mode & _S_IFMT) {
        case _S_IFDIR: return FileKind::Directory;
        case _S_IFREG: return FileKind::File;
        default: return FileKind::Other;
    }
}

// The C runtime finds no directory by a name that ends with a separator.
std::wstring directoryPath(std::u16string_view path) {
    const auto isSeparator = [](wchar_t unit) { return unit == L'/' || unit == L'\\'; };
    std::wstring native = nativePath(path);
    while (native.size() > 1 && isSeparator(native.back()) && native[native.size() - 2] != L':')
        native.pop_back();
    return native;
}

struct StreamRequest {
    int flags = 0;
    std::string mode;  // empty for one that makes no sense
};

StreamRequest streamRequest(std::string_view mode) {
    const char first = mode.empty() ? '\0' : mode[0];
    const bool both = mode.size() > 1 && mode[1] == '+';
    const bool text = mode.find('t') != std::string_view::npos;
    const int common = _O_NOINHERIT | (text ? _O_TEXT : _O_BINARY);
    const int direction = both ? _O_RDWR : _O_WRONLY;
    const std::string rest = std::string(both ? "+" : "") + (text ? "t" : "b");
    switch (first) {
        case 'r': return {common | (both ? _O_RDWR : _O_RDONLY), "r" + rest};
        case 'w': return {common | direction | _O_CREAT | _O_TRUNC, "w" + rest};
        case 'a': return {common | direction | _O_CREAT | _O_APPEND, "a" + rest};
        default: return {};
    }
}

}  // namespace

char16_t pathSeparator() {
    return u'\\';
}

std::u16string systemErrorText(std::uint32_t textCode) {
    wchar_t* text = nullptr;
    const DWORD length = ::FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, textCode, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (length == 0 || !text) return {};
    std::u16string result = fromWide({text, length});
    ::LocalFree(text);
    while (!result.empty() && (result.back() == u'\n' || result.back() == u'\r')) result.pop_back();
    return result;
}

FileStream openStream(std::u16string_view path, std::string_view mode, int& number) {
    const StreamRequest request = streamRequest(mode);
    number = errnoInvalid;
    if (request.mode.empty()) return nullptr;
    const int file = ::_wopen(nativePath(path).c_str(), request.flags, _S_IREAD | _S_IWRITE);
    if (file < 0) {
        number = resultOf(-1).number;
        return nullptr;
    }
    FileStream stream(::_fdopen(file, request.mode.c_str()));
    number = stream ? 0 : resultOf(-1).number;
    if (!stream) ::_close(file);
    return stream;
}

CallResult statFile(std::u16string_view path, FileStatus& status) {
    struct _stat64 found {};
    const std::wstring name = directoryPath(path);
    if (::_wstat64(name.c_str(), &found) != 0) return resultOf(-1);
    status.kind = kindOf(found.st_mode);
    if (name.size() < path.size() && status.kind != FileKind::Directory)
        return {errnoNoEntry, ERROR_PATH_NOT_FOUND};
    status.size = static_cast<std::uint64_t>(found.st_size);
    status.modified = found.st_mtime;
    status.created = found.st_ctime;
    return {};
}

CallResult renameFile(std::u16string_view from, std::u16string_view to) {
    return resultOf(::_wrename(nativePath(from).c_str(), nativePath(to).c_str()));
}

CallResult unlinkFile(std::u16string_view path) {
    return resultOf(::_wunlink(nativePath(path).c_str()));
}

CallResult removeDirectory(std::u16string_view path) {
    return resultOf(::_wrmdir(directoryPath(path).c_str()));
}

CallResult makeDirectory(std::u16string_view path) {
    return resultOf(::_wmkdir(directoryPath(path).c_str()));
}

bool accessFile(std::u16string_view path, int access) {
    return ::_waccess(nativePath(path).c_str(), access) == 0;
}

bool workingDirectory(std::u16string& path, std::size_t room) {
    std::vector<wchar_t> buffer(room + 1);
    if (!::_wgetcwd(buffer.data(), static_cast<int>(room))) return false;
    path = fromWide(buffer.data());
    return true;
}

CallResult fullPath(std::u16string_view path, std::u16string& result) {
    const std::wstring native = nativePath(path);
    const DWORD room = ::GetFullPathNameW(native.c_str(), 0, nullptr, nullptr);
    if (room == 0) return lastSystemResult();
    std::vector<wchar_t> buffer(room);
    const DWORD length = ::GetFullPathNameW(native.c_str(), room, buffer.data(), nullptr);
    if (length == 0 || length >= room) return lastSystemResult();
    result = fromWide({buffer.data(), length});
    return {};
}

CallResult copyFile(std::u16string_view from, std::u16string_view to, bool failIfExists) {
    const BOOL fail = failIfExists ? TRUE : FALSE;
    if (::CopyFileW(nativePath(from).c_str(), nativePath(to).c_str(), fail)) return {};
    return lastSystemResult();
}

std::uint32_t processId() {
    return ::GetCurrentProcessId();
}

std::int64_t fileClock() {
    return ::_time64(nullptr);
}

}  // namespace brushwork::platform
