// Who owns a file.
#pragma once

#include <string>
#include <string_view>

namespace brushwork::platform {

struct OwnerNames {
    std::string owner = "Unknown";  // UTF-8: "domain\account" on Windows, the account's name
    std::string group = "Unknown";  // elsewhere; "Unknown" for an account without a name
};

// False if the file can't be asked; both names are "Unknown" then. On Windows `path` should have
// the form that lifts the limit of 260 units.
[[nodiscard]] bool readOwnerNames(std::u16string_view path, OwnerNames& names);

}  // namespace brushwork::platform
