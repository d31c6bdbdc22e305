// znOS::Filename: a path as a value, always normalised, with one separator.
//
//     Filename picture(u"C:\\art\\sketches\\..\\cat.png", u'\\');
//     picture.path();       // C:\art\cat.png
//     picture.directory();  // C:\art
//     picture.extension();  // png
//
// It also makes temporary names and sweeps stale temporary files away. Nothing here looks whether a
// path exists unless the member says so.
#pragma once

#include <memory>
#include <string>

#include "brushwork/export.h"
#include "brushwork/i_string.h"

namespace brushwork::znOS {

// The parts of a path, as Filename hands them out.
struct FilenameParts {
    znString::IString root;  // "C:", "\\server\share", or empty
    znString::IString
        directory;               // root included, without a trailing separator but for "/" or "C:\"
    znString::IString name;      // what follows the directory
    znString::IString baseName;  // the name before its last dot
    znString::IString extension;  // and behind it
    char16_t separator = 0;
};

// What a path goes through when it is set:
// 1. the other one of "/" and "\" becomes the separator;
// 2. doubled separators become one, but for a pair at the very start;
// 3. trailing separators go, except in "C:\" and "\\server\";
// 4. steps "\..\" with separators on both sides swallow the name before them.
// A path never fails to be made. Parts are parsed on first use and kept until the path changes, on
// const objects too: one object isn't for two threads at once.
class BRUSHWORK_API Filename {
  public:
    Filename();
    explicit Filename(const znString::IString& path);
    Filename(const znString::IString& path, char16_t separator);
    explicit Filename(const znString::CString& path);  // taken as UTF-8
    Filename(const znString::CString& path, char16_t separator);
    // Joins with the default separator. An empty file leaves the directory as it stands; nothing
    // goes between a bare drive ("C:") or an empty directory and the file.
    Filename(const znString::IString& directory, const znString::IString& file);
    Filename(const znString::IString& directory, const znString::IString& file, char16_t separator);
    Filename(const Filename& other);
    virtual ~Filename();

    Filename& operator=(const Filename& other);          // takes the other's separator too
    Filename& operator=(const znString::IString& path);  // normalises with this separator
    // The process's working directory, if it has fewer than 260 units; else nothing changes and
    // the answer is false.
    bool setToWorkingDirectory();

    [[nodiscard]] const znString::IString& path() const { return path_; }
    [[nodiscard]] char16_t separator() const { return separator_; }
    [[nodiscard]] bool isEmpty() const { return path_.isEmpty(); }

    // References last until the path changes.
    [[nodiscard]] const znString::IString& root() const;
    [[nodiscard]] const znString::IString& directory() const;
    [[nodiscard]] const znString::IString& name() const;
    [[nodiscard]] const znString::IString& baseName() const;
    [[nodiscard]] const znString::IString& extension() const;

    // "\\..." and "C:\...", and on systems whose default separator is "/" also "/...".
    [[nodiscard]] bool isAbsolute() const;
    // True for the base names that Windows reserves: CON, PRN, AUX, NUL, COM1 to COM9 and LPT1 to
    // LPT9, in any case.
    [[nodiscard]] bool isDeviceName() const;

    friend bool operator==(const Filename& a, const Filename& b) { return a.path_ == b.path_; }

    // A backslash on Windows, a slash elsewhere.
    [[nodiscard]] static char16_t defaultSeparator();

    // Copies one part of a UTF-8 path into `buffer` as UTF-8 with a terminator. There is no bound:
    // the buffer must hold 3 * strlen(path) + 1 bytes.
    static void narrowRoot(const char* path, char* buffer);
    static void narrowDirectory(const char* path, char* buffer);
    static void narrowName(const char* path, char* buffer);
    static void narrowBaseName(const char* path, char* buffer);
    static void narrowExtension(const char* path, char* buffer);

    // Where temporary files go: the override if there is one, else the system's place. The override
    // is meant to be set at start, before there are threads; an empty one takes it back.
    [[nodiscard]] static znString::IString temporaryDirectory();
    static void setTemporaryDirectory(const znString::IString& directory);

    // The name of a file that doesn't exist, in the temporary directory: at most three units of the
    // prefix, some hexadecimal digits, the process id, "." and the extension (which may be empty).
    // An empty prefix stands for "ZNTMP". Empty if no file can be made there.
    [[nodiscard]] static Filename temporaryName(const znString::IString& extension,
                                                const znString::IString& prefix = {});
    // The same in a directory of the caller's. An empty prefix stands for "recover".
    [[nodiscard]] static Filename temporaryNameIn(const znString::IString& directory,
                                                  const znString::IString& extension,
                                                  const znString::IString& prefix = {});

    // Deletes the files of the directory that bear a temporary name of this system's family and
    // weren't modified for more than seven days. Answers how many went; failures don't count.
    static int sweepDirectory(const znString::IString& directory);
    // The temporary directory, and "/tmp" where that exists and is another.
    static int sweepTemporaryFiles();

  private:
    void setPath(std::u16string path);    // steps 1 to 4
    void setJoined(std::u16string path);  // steps 2 to 4
    [[nodiscard]] const FilenameParts& parts() const;

    char16_t separator_;
    znString::IString path_;
    mutable std::unique_ptr<const FilenameParts> parts_;
};

}  // namespace brushwork::znOS
