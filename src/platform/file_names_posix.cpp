// The names in directories, and new names.

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/file_calls_posix.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

std::string randomDigits() {
    std::array<unsigned char, 6> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0) return {};
    std::string digits;
    for (const unsigned char byte : bytes) {
        digits += "0123456789abcdef"[byte >> 4];
        digits += "0123456789abcdef"[byte & 15];
    }
    return digits;
}

}  // namespace

CallResult listDirectory(std::u16string_view directory, std::vector<std::u16string>& names) {
    names.clear();
    const std::unique_ptr<DIR, DirectoryCloser> open(::opendir(NativePath(directory).c_str()));
    if (!open) {
        CallResult result = systemResult(errno);
        if (result.number == systemFileNotFound) result.number = systemPathNotFound;
        return result;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(open.get())) names.push_back(fromUtf8(entry->d_name));
    if (errno != 0) return systemResult(errno);
    // The system gives them in any order; callers get the same one every time.
    std::sort(names.begin(), names.end());
    return {};
}

std::u16string temporaryDirectory() {
    const char* chosen = std::getenv("TMPDIR");
    return chosen && *chosen ? fromUtf8(chosen) : std::u16string(u"/tmp");
}

FileDescriptor openUniqueFile(const std::string& stem, unsigned int permissions,
                              std::string& path) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string digits = randomDigits();
        if (digits.empty()) break;
        path = stem + digits + ".tmp";
        FileDescriptor file = openDescriptor(path, O_RDWR | O_CREAT | O_EXCL, permissions);
        if (file.isOpen() || errno != EEXIST) return file;
    }
    return {};
}

CallResult makeUniqueFile(std::u16string_view directory, std::u16string_view prefix,
                          std::u16string& path) {
    std::u16string stem(directory);
    if (!stem.empty() && stem.back() != pathSeparator()) stem += pathSeparator();
    stem += prefix.substr(0, 3);
    std::string name;
    const FileDescriptor file = openUniqueFile(NativePath(stem).text(), 0600, name);
    if (!file.isOpen()) return errnoResult(errno);
    path = fromUtf8(name);
    return {};
}

}  // namespace brushwork::platform
