// Where in a line of JSON a value stands, for messages that point at it.
//
// For text that a parser has accepted; in other text the answers are places somewhere in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace brushwork::tools {

// From the outermost value inward: names of members and numbers of elements.
using JsonPath = std::vector<std::variant<std::string, std::size_t>>;

// The byte at which the value begins; of a path that leads nowhere, that of the innermost value on
// the way.
[[nodiscard]] std::size_t jsonPlace(std::string_view text, const JsonPath& path);
// The byte at which a name begins that its object has already. Objects within objects count too.
[[nodiscard]] std::optional<std::size_t> repeatedName(std::string_view text);
// Counted from 1 in characters of UTF-8.
[[nodiscard]] std::size_t columnOf(std::string_view text, std::size_t byte);

}  // namespace brushwork::tools
