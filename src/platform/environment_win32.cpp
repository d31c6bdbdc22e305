#include <windows.h>

#include <cstdlib>

#include "platform/environment.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

std::wstring wide(std::u16string_view text) {
    return std::wstring(text.begin(), text.end());
}

bool isUsable(std::u16string_view name) {
    return !name.empty() && name.find(u'=') == name.npos;
}

}  // namespace

std::optional<std::u16string> environmentText(const char* name) {
    const std::wstring wideName = wide(fromUtf8(name));
    std::wstring value(256, L'\0');
    for (;;) {
        ::SetLastError(ERROR_SUCCESS);
        const DWORD room = static_cast<DWORD>(value.size());
        const DWORD length = ::GetEnvironmentVariableW(wideName.c_str(), value.data(), room);
        if (length == 0 && ::GetLastError() != ERROR_SUCCESS) return std::nullopt;
        value.resize(length);
        if (length < room) return std::u16string(value.begin(), value.end());
    }
}

std::optional<std::string> environmentVariable(const char* name) {
    const auto text = environmentText(name);
    return text ? std::optional<std::string>(toUtf8(*text)) : std::nullopt;
}

bool setEnvironmentText(const char* name, std::u16string_view value) {
    const std::u16string units = fromUtf8(name);
    if (!isUsable(units) || value.find(u'\0') != value.npos) return false;
    const std::wstring wideName = wide(units), wideValue = wide(value);
    // The runtime keeps a copy of its own, where setting an empty value removes the variable.
    if (::_wputenv_s(wideName.c_str(), wideValue.c_str()) != 0) return false;
    return ::SetEnvironmentVariableW(wideName.c_str(), wideValue.c_str()) != 0;
}

bool setEnvironmentVariable(const char* name, std::string_view value) {
    return setEnvironmentText(name, fromUtf8(value));
}

bool unsetEnvironmentVariable(const char* name) {
    const std::u16string units = fromUtf8(name);
    if (!isUsable(units)) return false;
    if (!environmentText(name)) return true;
    const std::wstring wideName = wide(units);
    const bool done = ::_wputenv_s(wideName.c_str(), L"") == 0;
    ::SetEnvironmentVariableW(wideName.c_str(), nullptr);
    return done;
}

}  // namespace brushwork::platform
