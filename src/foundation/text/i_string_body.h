// The heap body of IString; for the files that implement its members.
#pragma once

#include <optional>
#include <string>

#include "brushwork/i_string.h"

namespace brushwork::znString {

struct IString::Body {
    std::u16string text;
    std::optional<std::string> narrow;  // UTF-8 of `text`, once asked for; dropped by a change
};

}  // namespace brushwork::znString
