// Our 16-bit text and the system's: the same units under two types.
#pragma once

#include <string>
#include <string_view>

namespace brushwork::platform {

[[nodiscard]] inline std::wstring toWide(std::u16string_view text) {
    return std::wstring(text.begin(), text.end());
}

[[nodiscard]] inline std::u16string fromWide(std::wstring_view text) {
    return std::u16string(text.begin(), text.end());
}

// Such text would be cut short by a call that takes a terminated string.
[[nodiscard]] inline bool holdsTerminator(std::u16string_view text) {
    return text.find(u'\0') != std::u16string_view::npos;
}

}  // namespace brushwork::platform
