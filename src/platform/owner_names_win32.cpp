#include <windows.h>

#include <array>
#include <vector>

#include "platform/owner_names.h"
#include "platform/text_codec.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

namespace {

bool accountName(PSID account, std::string& name) {
    constexpr DWORD room = 256;
    std::array<wchar_t, room> person{};
    std::array<wchar_t, room> domain{};
    DWORD personRoom = room;
    DWORD domainRoom = room;
    SID_NAME_USE use = SidTypeUnknown;
    if (!::LookupAccountSidW(nullptr, account, person.data(), &personRoom, domain.data(),
                             &domainRoom, &use))
        return false;
    name = toUtf8(fromWide(domain.data())) + "\\" + toUtf8(fromWide(person.data()));
    return true;
}

}  // namespace

bool readOwnerNames(std::u16string_view path, OwnerNames& names) {
    names = {};
    if (holdsTerminator(path)) return false;
    constexpr SECURITY_INFORMATION wanted = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION;
    const std::wstring native = toWide(path);
    DWORD needed = 0;
    (void)::GetFileSecurityW(native.c_str(), wanted, nullptr, 0, &needed);
    if (needed == 0) return false;
    std::vector<unsigned char> room(needed);
    if (!::GetFileSecurityW(native.c_str(), wanted, room.data(), needed, &needed)) return false;
    PSID owner = nullptr;
    PSID group = nullptr;
    BOOL defaulted = FALSE;
    if (!::GetSecurityDescriptorOwner(room.data(), &owner, &defaulted) ||
        !::GetSecurityDescriptorGroup(room.data(), &group, &defaulted))
        return false;
    OwnerNames found;
    if (!accountName(owner, found.owner) || !accountName(group, found.group)) return false;
    names = found;
    return true;
}

}  // namespace brushwork::platform
