// What the Windows files of file_calls share.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "platform/file_calls.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

// A path as the system takes it. One with a zero unit in it becomes the empty path, which no call
// finds.
[[nodiscard]] inline std::wstring nativePath(std::u16string_view path) {
    return holdsTerminator(path) ? std::wstring() : toWide(path);
}

// The last system error under its own number.
[[nodiscard]] inline CallResult lastSystemResult() {
    const DWORD error = ::GetLastError();
    return {error == 0 ? -1 : static_cast<int>(error), error};
}

}  // namespace brushwork::platform
