// The names in directories, and new names.

#include <array>
#include <atomic>
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
    // The system's own numbers come from its clock: a name that was given back is soon given again.
    static std::atomic<UINT> next{::GetTickCount() ^ ::GetCurrentProcessId() << 4};
    const std::wstring folder = nativePath(directory);
    const std::wstring start = nativePath(prefix.substr(0, 3));
    DWORD error = ERROR_FILE_EXISTS;
    for (UINT tried = 0; tried < 0xFFFF && error == ERROR_FILE_EXISTS; ++tried) {
        std::array<wchar_t, pathRoom + 1> name{};
        const UINT number = 1 + next++ % 0xFFFF;
        const bool named =
            ::GetTempFileNameW(folder.c_str(), start.c_str(), number, name.data()) != 0;
        const HANDLE file = named ? ::CreateFileW(name.data(), GENERIC_WRITE, 0, nullptr,
                                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)
                                  : INVALID_HANDLE_VALUE;
        if (file != INVALID_HANDLE_VALUE) {
            ::CloseHandle(file);
            path = fromWide(name.data());
            return {};
        }
        error = ::GetLastError();
    }
    return {errnoOf(error), error};
}

}  // namespace brushwork::platform
