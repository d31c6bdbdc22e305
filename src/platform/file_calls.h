// Files and directories as the operating system offers them: plain functions over paths in 16-bit
// units.
//
// Where a number is answered it is a number of the Windows C runtime (errno: 2 no such entry, 13 no
// access, 17 exists, 22 invalid, 41 not empty) or, where the comment says so, a Windows system
// error (2 file not found, 3 path not found, 80 file exists), on every system, because the layers
// above decide by these numbers. 0 is success. Other values may be the system's own.
//
// A path with a zero unit in it leads nowhere. Nothing here throws but for memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace brushwork::platform {

// What a call came to.
struct CallResult {
    int number = 0;              // see above
    std::uint32_t textCode = 0;  // what systemErrorText() takes
    [[nodiscard]] bool ok() const { return number == 0; }
};

inline constexpr int errnoNoEntry = 2;
inline constexpr int errnoNoAccess = 13;
inline constexpr int errnoExists = 17;
inline constexpr int errnoInvalid = 22;
inline constexpr int errnoNotEmpty = 41;
inline constexpr int systemFileNotFound = 2;
inline constexpr int systemPathNotFound = 3;
inline constexpr int systemAccessDenied = 5;
inline constexpr int systemFileExists = 80;

// The default separator of paths: a backslash on Windows, a slash elsewhere.
[[nodiscard]] char16_t pathSeparator();

// The system's words for an error, without a line end; empty if it has none.
[[nodiscard]] std::u16string systemErrorText(std::uint32_t textCode);

struct StreamCloser {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using FileStream = std::unique_ptr<std::FILE, StreamCloser>;

// Opens a C stream. The first letter of `mode` decides ("r", "w" or "a"), a "+" directly behind it
// adds the other direction, other letters behind it do nothing, so "rw" reads only; a "t" asks for
// line end translation where the system has it. The stream isn't inherited by child processes.
// Directories don't open (13). Null after a failure, with `number` set.
[[nodiscard]] FileStream openStream(std::u16string_view path, std::string_view mode, int& number);

enum class FileKind { Other, File, Directory };
struct FileStatus {
    FileKind kind = FileKind::Other;
    std::uint64_t size = 0;     // bytes
    std::int64_t modified = 0;  // seconds since 1970
    std::int64_t created = 0;   // where the system keeps no birth time, the last status change
};
// Follows symbolic links.
[[nodiscard]] CallResult statFile(std::u16string_view path, FileStatus& status);

// Fails with 17 if the new name exists, unless both names are the same text.
[[nodiscard]] CallResult renameFile(std::u16string_view from, std::u16string_view to);
[[nodiscard]] CallResult unlinkFile(std::u16string_view path);
[[nodiscard]] CallResult removeDirectory(std::u16string_view path);  // an empty one
[[nodiscard]] CallResult makeDirectory(std::u16string_view path);

inline constexpr int accessWrite = 2;
inline constexpr int accessRead = 4;
[[nodiscard]] bool accessFile(std::u16string_view path, int access);

// False if the directory and its terminator don't fit into `room` units; `path` stays as it was.
[[nodiscard]] bool workingDirectory(std::u16string& path, std::size_t room);

// The absolute form of a path, by text alone: nothing needs to exist. `number` is a system error.
[[nodiscard]] CallResult fullPath(std::u16string_view path, std::u16string& result);

// The names in a directory, "." and ".." among them; `directory` ends in a separator. `number` is a
// system error: 2 if there is nothing at all, 3 if there is no such directory.
[[nodiscard]] CallResult listDirectory(std::u16string_view directory,
                                       std::vector<std::u16string>& names);

// Copies one file with its permissions and modification time, and leaves no partial file behind.
// `number` is a system error: 2 source not found, 80 target exists.
[[nodiscard]] CallResult copyFile(std::u16string_view from, std::u16string_view to,
                                  bool failIfExists);

// Where the system wants temporary files; may end in a separator; empty if it doesn't say.
[[nodiscard]] std::u16string temporaryDirectory();

// Makes an empty file of a new name in `directory`: at most three units of the prefix, hexadecimal
// digits, ".tmp". Readable and writable by its owner alone.
[[nodiscard]] CallResult makeUniqueFile(std::u16string_view directory, std::u16string_view prefix,
                                        std::u16string& path);

[[nodiscard]] std::uint32_t processId();

// The present time on the clock that stamps files: seconds since 1970.
[[nodiscard]] std::int64_t fileClock();

}  // namespace brushwork::platform
