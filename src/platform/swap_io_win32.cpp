#include <windows.h>
// The control codes need the header above.
#include <winioctl.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/swap_io.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

namespace {

// One call moves at most this much; network file systems refuse larger ones.
constexpr std::size_t largestTransfer = std::size_t{32} << 20;

HANDLE asHandle(std::intptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

OVERLAPPED placeAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

// A security descriptor that lets the user of this process do everything and nobody else anything.
class OwnerOnly {
  public:
    OwnerOnly() {
        HANDLE token = nullptr;
        if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) return;
        const bool known = readUser(token);
        ::CloseHandle(token);
        valid_ = known && build();
    }
    OwnerOnly(const OwnerOnly&) = delete;
    OwnerOnly& operator=(const OwnerOnly&) = delete;

    // Null if the system didn't tell who the user is.
    SECURITY_ATTRIBUTES* attributes() { return valid_ ? &attributes_ : nullptr; }

  private:
    bool readUser(HANDLE token) {
        DWORD bytes = 0;
        ::GetTokenInformation(token, TokenUser, nullptr, 0, &bytes);
        if (bytes < sizeof(TOKEN_USER)) return false;
        user_.resize(bytes / sizeof(TOKEN_USER) + 1);
        return ::GetTokenInformation(token, TokenUser, user_.data(), bytes, &bytes) != 0;
    }

    bool build() {
        const PSID user = user_.front().User.Sid;
        const DWORD bytes =
            static_cast<DWORD>(sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE)) + ::GetLengthSid(user);
        list_.resize(bytes / sizeof(DWORD) + 1);
        const auto list = reinterpret_cast<ACL*>(list_.data());
        const auto listBytes = static_cast<DWORD>(list_.size() * sizeof(DWORD));
        if (!::InitializeAcl(list, listBytes, ACL_REVISION)) return false;
        if (!::AddAccessAllowedAce(list, ACL_REVISION, FILE_ALL_ACCESS, user)) return false;
        if (!::InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION))
            return false;
        if (!::SetSecurityDescriptorDacl(&descriptor_, TRUE, list, FALSE)) return false;
        // Without this the directory's own entries would be added.
        return ::SetSecurityDescriptorControl(&descriptor_, SE_DACL_PROTECTED, SE_DACL_PROTECTED) !=
               0;
    }

    std::vector<TOKEN_USER> user_;  // the record, and behind it the identity it points to
    std::vector<DWORD> list_;
    SECURITY_DESCRIPTOR descriptor_{};
    SECURITY_ATTRIBUTES attributes_{sizeof(SECURITY_ATTRIBUTES), &descriptor_, FALSE};
    bool valid_ = false;
};

HANDLE openHandle(const std::wstring& name, PositionedFile::Mode mode) {
    // As elsewhere, an open file may be renamed and deleted.
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // A pipe's server that stands behind a name must not act as this user.
    constexpr DWORD flags = FILE_ATTRIBUTE_NORMAL | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;
    const bool owned = mode == PositionedFile::Mode::CreateOwned;
    if (owned || mode == PositionedFile::Mode::CreateNew) {
        OwnerOnly owner;
        if (!owner.attributes()) return INVALID_HANDLE_VALUE;
        // The system itself deletes an owned file with its last handle, however the process ends.
        return ::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | (owned ? DELETE : 0),
                             share, owner.attributes(), CREATE_NEW,
                             FILE_ATTRIBUTE_NORMAL | (owned ? FILE_FLAG_DELETE_ON_CLOSE : 0),
                             nullptr);
    }
    const DWORD access =
        mode == PositionedFile::Mode::ReadWrite ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
    return ::CreateFileW(name.c_str(), access, share, nullptr, OPEN_EXISTING, flags, nullptr);
}

}  // namespace

bool PositionedFile::open(std::u16string_view path, Mode mode) {
    close();
    if (holdsTerminator(path)) return false;
    const HANDLE file = openHandle(toWide(path), mode);
    if (file == INVALID_HANDLE_VALUE) return false;
    if (::GetFileType(file) != FILE_TYPE_DISK) {
        ::CloseHandle(file);
        return false;
    }
    handle_ = reinterpret_cast<std::intptr_t>(file);
    return true;
}

bool PositionedFile::close() noexcept {
    if (handle_ == closed) return true;
    const HANDLE file = asHandle(handle_);
    handle_ = closed;
    return ::CloseHandle(file) != 0;
}

std::size_t PositionedFile::readAt(std::uint64_t offset, void* buffer, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        OVERLAPPED place = placeAt(offset + done);
        DWORD moved = 0;
        const auto wanted = static_cast<DWORD>(std::min(count - done, largestTransfer));
        // Reading at the end fails with a status of its own; either way nothing more comes.
        if (!::ReadFile(asHandle(handle_), static_cast<char*>(buffer) + done, wanted, &moved,
                        &place) ||
            moved == 0)
            break;
        done += moved;
    }
    return done;
}

bool PositionedFile::writeAt(std::uint64_t offset, const void* bytes, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        OVERLAPPED place = placeAt(offset + done);
        DWORD moved = 0;
        const auto wanted = static_cast<DWORD>(std::min(count - done, largestTransfer));
        if (!::WriteFile(asHandle(handle_), static_cast<const char*>(bytes) + done, wanted, &moved,
                         &place) ||
            moved == 0)
            return false;
        done += moved;
    }
    return true;
}

std::uint64_t PositionedFile::size() const {
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(asHandle(handle_), &size)) return 0;
    return static_cast<std::uint64_t>(size.QuadPart);
}

bool PositionedFile::resize(std::uint64_t size) {
    if (size > INT64_MAX) return false;
    DWORD unused = 0;
    // Refused by file systems without gaps, which then fill the new bytes themselves.
    ::DeviceIoControl(asHandle(handle_), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &unused,
                      nullptr);
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return ::SetFileInformationByHandle(asHandle(handle_), FileEndOfFileInfo, &end, sizeof end) !=
           0;
}

// The system has done it.
bool removeIfAbandoned(std::u16string_view) {
    return false;
}

}  // namespace brushwork::platform
