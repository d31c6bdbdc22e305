#include "brushwork/error.h"

#include <array>
#include <cstddef>
#include <new>
#include <utility>

namespace brushwork::znUtil {

namespace {

using znString::IString;
using Message = std::unique_ptr<IString>;

constexpr std::array<const char16_t*, 20> texts = {
    u"",
    u"Not Implemented",
    u"File Exists",
    u"End Of File",
    u"An I/O problem has occurred",
    u"No write permission",
    u"No read permission",
    u"No Overwrite permission",
    u"File is not open",
    u"File is open",
    u"Resource is not a directory",
    u"Resource is not a file",
    u"The path is too long",
    u"The directory is not empty",
    u"ErrSyscall",
    u"The URL is invalid",
    u"Permission Denied",
    u"Authentication Failed",
    u"File does not exist",
    u"Cannot become the parent of a root directory",
};

// Null without memory: the code alone must still arrive.
Message copied(const IString& text) noexcept try {
    return std::make_unique<IString>(text);
} catch (const std::bad_alloc&) {
    return nullptr;
}

Message tableMessage(std::int32_t code) noexcept try {
    const char16_t* text = Error::text(code);
    return *text ? std::make_unique<IString>(text) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

Message formatted(const char16_t* pattern, std::va_list arguments) noexcept try {
    auto text = std::make_unique<IString>();
    return text->formatList(pattern, arguments) ? std::move(text) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

IString widened(const char* pattern) noexcept try {
    return IString(pattern);
} catch (const std::bad_alloc&) {
    return IString();
}

}  // namespace

Error::Error(std::int32_t code) : code_(code), message_(tableMessage(code)) {}

Error::Error(std::int32_t code, const char* pattern, ...) : code_(code) {
    const IString wide = widened(pattern);
    std::va_list arguments;
    va_start(arguments, pattern);
    message_ = formatted(wide.c_str(), arguments);
    va_end(arguments);
}

Error::Error(std::int32_t code, const char16_t* pattern, ...) : code_(code) {
    std::va_list arguments;
    va_start(arguments, pattern);
    message_ = formatted(pattern, arguments);
    va_end(arguments);
}

Error::Error(std::int32_t code, const IString& message) : code_(code), message_(copied(message)) {}

Error::Error(const Error& other)
    : code_(other.code_), message_(other.message_ ? copied(*other.message_) : nullptr) {}

Error::~Error() = default;

Error& Error::operator=(Error other) noexcept {
    std::swap(code_, other.code_);
    std::swap(message_, other.message_);
    return *this;
}

bool operator==(const Error& a, const Error& b) {
    if (a.code_ != b.code_ || !a.message_ != !b.message_) return false;
    return !a.message_ || *a.message_ == *b.message_;
}

const char16_t* Error::text(std::int32_t code) noexcept {
    const auto index = static_cast<std::size_t>(code);
    return code >= 0 && index < texts.size() ? texts[index] : u"";
}

}  // namespace brushwork::znUtil
