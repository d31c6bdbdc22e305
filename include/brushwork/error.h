// znUtil::Error: the result value of files, transports and start-up.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <memory>

#include "brushwork/export.h"
#include "brushwork/i_string.h"

namespace brushwork::znUtil {

// The codes that have a text of their own. A failure that has only a message bears -1.
enum ErrorCode : std::int32_t {
    MessageOnly = -1,
    Success = 0,
    NotImplemented = 1,
    FileExists = 2,
    EndOfFile = 3,
    IoProblem = 4,
    NoWritePermission = 5,
    NoReadPermission = 6,
    NoOverwritePermission = 7,
    FileNotOpen = 8,
    FileIsOpen = 9,
    NotADirectory = 10,
    NotAFile = 11,
    PathTooLong = 12,
    DirectoryNotEmpty = 13,
    SystemCall = 14,
    InvalidUrl = 15,
    PermissionDenied = 16,
    AuthenticationFailed = 17,
    FileDoesNotExist = 18,
    ParentOfRoot = 19,
};

// A code and, for most failures, a message. A value: copies are deep. Running out of memory while
// a message is made leaves the message out and keeps the code.
class BRUSHWORK_API Error {
  public:
    Error() noexcept = default;  // success, no message
    // The message is the code's own text; success and a code outside the table have none.
    Error(std::int32_t code);
    // A null or empty pattern leaves no message. Placeholders as in IString::format.
    Error(std::int32_t code, const char* pattern, ...);
    Error(std::int32_t code, const char16_t* pattern, ...);
    Error(std::int32_t code, const znString::IString& message);
    Error(const Error& other);
    Error(Error&& other) noexcept = default;
    virtual ~Error();
    Error& operator=(Error other) noexcept;

    [[nodiscard]] std::int32_t code() const noexcept { return code_; }
    // Null if there is none.
    [[nodiscard]] const znString::IString* message() const noexcept { return message_.get(); }
    [[nodiscard]] bool failed() const noexcept { return code_ != 0; }

    // Codes must be equal, and the messages equal or both absent.
    friend BRUSHWORK_API bool operator==(const Error& a, const Error& b);

    // The text of the table, empty for success and for codes outside it.
    [[nodiscard]] static const char16_t* text(std::int32_t code) noexcept;

  private:
    std::int32_t code_ = 0;
    std::unique_ptr<znString::IString> message_;
};

}  // namespace brushwork::znUtil
