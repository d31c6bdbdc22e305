// The environment variables of the process.
//
// Names are ASCII, without "=". Setting is for the start of the process and for tests, while no
// other thread reads the environment.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brushwork::platform {

// No value if the variable isn't set; one that is set and empty gives an empty text. On systems
// whose environment is bytes the first form hands them out as they are.
[[nodiscard]] std::optional<std::string> environmentVariable(const char* name);
[[nodiscard]] std::optional<std::u16string> environmentText(const char* name);

// False if the system refuses, the name is unusable or the value contains U+0000.
bool setEnvironmentVariable(const char* name, std::string_view value);
bool setEnvironmentText(const char* name, std::u16string_view value);
// True also if it wasn't set.
bool unsetEnvironmentVariable(const char* name);

}  // namespace brushwork::platform
