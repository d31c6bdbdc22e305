#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "brushwork/i_string.h"
#include "foundation/text/i_string_body.h"
#include "foundation/text/wide_printf.h"

namespace brushwork::znString {

namespace {

constexpr std::uint64_t firstBufferUnits = 256;
constexpr std::uint64_t bufferGrowth = 1024;

// The formatter tells how much it needs, so the steps of the growth are taken at once.
std::uint64_t grownUnits(std::uint64_t current, std::uint64_t needed) {
    const std::uint64_t steps = (needed - current + bufferGrowth - 1) / bufferGrowth;
    return std::min(current + steps * bufferGrowth, mostFormattedUnits);
}

}  // namespace

bool IString::format(const char16_t* pattern, ...) {
    std::va_list arguments;
    va_start(arguments, pattern);
    const bool done = formatList(pattern, arguments);
    va_end(arguments);
    return done;
}

bool IString::format(const char* pattern, ...) try {
    const IString wide(pattern);
    std::va_list arguments;
    va_start(arguments, pattern);
    const bool done = formatList(wide.c_str(), arguments);
    va_end(arguments);
    return done;
} catch (const std::bad_alloc&) {
    return false;
}

bool IString::formatList(const char16_t* pattern, std::va_list arguments) try {
    if (!pattern) return false;
    std::u16string buffer(firstBufferUnits, u'\0');
    for (;;) {
        const std::uint64_t needed = wideVprintf(buffer, pattern, arguments);
        if (!needed) return false;
        if (needed <= buffer.size()) break;
        buffer.resize(static_cast<std::size_t>(grownUnits(buffer.size(), needed)));
    }
    // A U+0000 among the arguments ends the text.
    buffer.resize(buffer.find(u'\0'));
    if (buffer.empty()) return false;
    body().text = std::move(buffer);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace brushwork::znString
