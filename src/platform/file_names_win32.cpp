// The names in directories, and new names.

#include <array>
#include <vector>

#include "platform/file_calls_win32.h"

namespace brushwork::platform {

namespace {

constexpr DWORD pathRoom = 260;

struct FindCloser {
    void operator()(void* find) const { ::FindClose(find); }
};

// What the C runtime makes of a system error.
int errnoOf(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_DIRECTORY:
        case ERROR_BUFFER_OVERFLOW: return errnoNoEntry;
        case ERROR_ACCESS_DENIED: return errnoNoAccess;
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS: return errnoExists;
        default: return errnoInvalid;
    }
}

}  // namespace

CallResult listDirectory(std::u16string_view directory, std::vector<std::u16string>& names) {
    names.clear();
    WIN32_FIND_DATAW entry{};
    const std::wstring pattern = nativePath(directory) + L"*";
    const HANDLE first = ::FindFirstFileW(pattern.c_str(), &entry);
    if (first == INVALID_HANDLE_VALUE) return lastSystemResult();
    const std::unique_ptr<void, FindCloser> find(first);
    do names.push_back(fromWide(static_cast<const wchar_t*>(entry.cFileName)));
    while (::FindNextFileW(find.get(), &entry));
    return ::GetLastError() == ERROR_NO_MORE_FILES ? CallResult{} : lastSystemResult();
}

std::u16string temporaryDirectory() {
    std::array<wchar_t, pathRoom> path{};
    const DWORD length = ::GetTempPathW(pathRoom, path.data());
    return length < pathRoom ? fromWide({path.data(), length}) : std::u16string();
}

CallResult makeUniqueFile(std::u16string_view directory, std::u16string_view prefix,
                          std::u16string& path) {
    std::array<wchar_t, pathRoom + 1> name{};
    const std::wstring start = nativePath(prefix.substr(0, 3));
    if (::GetTempFileNameW(nativePath(directory).c_str(), start.c_str(), 0, name.data()) == 0) {
        const DWORD error = ::GetLastError();
        return {errnoOf(error), error};
    }
    path = fromWide(name.data());
    return {};
}

}  // namespace brushwork::platform
