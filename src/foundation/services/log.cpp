#include "foundation/services/log.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "foundation/host/host_calls.h"

namespace brushwork {

namespace {

void writeToStderr(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

struct SinkState {
    // Held while the sink runs; recursive, as a sink may log. No other lock is taken under it by
    // this file.
    std::recursive_mutex mutex;
    std::shared_ptr<const LogSink> sink;  // null for stderr
};

// Never destroyed: objects log while the process ends.
SinkState& sinkState() {
    static SinkState& state = *std::make_unique<SinkState>().release();
    return state;
}

void deliver(std::string_view text) {
    SinkState& state = sinkState();
    const std::lock_guard lock(state.mutex);
    const auto sink = state.sink;  // the sink may replace itself
    if (sink)
        (*sink)(text);
    else
        writeToStderr(text);
}

}  // namespace

void setLogSink(LogSink sink) {
    auto next = sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
    SinkState& state = sinkState();
    const std::lock_guard lock(state.mutex);
    state.sink.swap(next);
}

void log(const char* pattern, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, pattern);
    logList(pattern, arguments);
    va_end(arguments);
}

void logAt(std::int32_t level, const char* pattern, ...) noexcept {
    if (hostDebugLevel() != level) return;
    std::va_list arguments;
    va_start(arguments, pattern);
    logList(pattern, arguments);
    va_end(arguments);
}

void logList(const char* pattern, std::va_list arguments) noexcept try {
    std::va_list copy;
    va_copy(copy, arguments);
    std::array<char, 512> few;
    const int length = std::vsnprintf(few.data(), few.size(), pattern, copy);
    va_end(copy);
    if (length < 0) return;
    const auto size = static_cast<std::size_t>(length);
    if (size < few.size()) return deliver({few.data(), size});
    std::string many(size + 1, '\0');
    if (std::vsnprintf(many.data(), many.size(), pattern, arguments) < 0) return;
    deliver({many.data(), size});
} catch (...) {
    // Logging must not become a failure of its own.
}

}  // namespace brushwork
