// The one log routine.
//
//     log("swap file %s could not be made\n", name);
//     logAt(0x2016, "layer %d moved\n", id);  // only if the host asks for 0x2016
//
// A call hands one piece of UTF-8 text to the sink as it stands: a text ends its own line. Any
// thread.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string_view>

namespace brushwork {

// Takes one text, one call at a time; the text lasts for the call. It may log itself.
using LogSink = std::function<void(std::string_view text)>;

// From now on texts go to `sink`, and none is under way in the sink before it. An empty one takes
// back the first state: stderr.
void setLogSink(LogSink sink);

// A text that can't be formatted, or for which there is no memory, is dropped; what a sink throws
// goes no further.
void log(const char* pattern, ...) noexcept __attribute__((format(printf, 1, 2)));
void logList(const char* pattern, std::va_list arguments) noexcept
    __attribute__((format(printf, 1, 0)));
// Does nothing unless the host's debug level equals `level`.
void logAt(std::int32_t level, const char* pattern, ...) noexcept
    __attribute__((format(printf, 2, 3)));

}  // namespace brushwork
