#include <windows.h>

#include <iterator>

#include "platform/thread_name.h"

namespace brushwork::platform {

// The call is younger than the oldest Windows that this runs on.
bool nameCallingThread(const std::string& name) noexcept {
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
    if (!kernel) return false;
    const auto set = reinterpret_cast<SetDescription>(
        reinterpret_cast<void*>(::GetProcAddress(kernel, "SetThreadDescription")));
    if (!set) return false;
    wchar_t wide[64] = {};
    for (std::size_t index = 0; index < name.size() && index + 1 < std::size(wide); ++index)
        wide[index] = static_cast<unsigned char>(name[index]);
    return set(::GetCurrentThread(), wide) >= 0;
}

}  // namespace brushwork::platform
