// The helper's one run: arguments, request, command, response, exit value.
#pragma once

#include <string>
#include <vector>

namespace brushwork {

inline constexpr int bridgeAnswered = 1;
inline constexpr int bridgeFailed = -1;

// The argument behind the first "/file" (in any mix of case) that has one; empty if there is none.
// The first argument is the program's own name.
[[nodiscard]] std::u16string requestPathFrom(const std::vector<std::u16string>& arguments);

// Serves the request that the arguments name and answers the exit value: 1 if the response was
// written, or couldn't be written and the pixels were dropped, or the command is unknown; -1 if
// there is no request or the command failed. Does not throw.
[[nodiscard]] int runBridge(const std::vector<std::u16string>& arguments) noexcept;

}  // namespace brushwork
