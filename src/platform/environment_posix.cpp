#include <cstdlib>

#include "platform/environment.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

std::optional<std::string> environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::u16string> environmentText(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::u16string>(fromUtf8(value)) : std::nullopt;
}

bool setEnvironmentVariable(const char* name, std::string_view value) {
    if (value.find('\0') != value.npos) return false;
    return ::setenv(name, std::string(value).c_str(), 1) == 0;
}

bool setEnvironmentText(const char* name, std::u16string_view value) {
    return setEnvironmentVariable(name, toUtf8(value));
}

bool unsetEnvironmentVariable(const char* name) {
    return ::unsetenv(name) == 0;
}

}  // namespace brushwork::platform
