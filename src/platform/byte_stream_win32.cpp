#include "platform/byte_stream.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "platform/file_calls_win32.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t largestTransfer = std::size_t{64} * 1024 * 1024;

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

Handle openHandle(const std::wstring& path, DWORD access, DWORD share, DWORD flags = 0) {
    const HANDLE handle = ::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL | flags, nullptr);
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

OVERLAPPED placeAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

std::size_t readPlace(HANDLE file, std::uint64_t offset, void* buffer, std::size_t count) {
    auto* bytes = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        OVERLAPPED place = placeAt(offset + done);
        const auto wanted = static_cast<DWORD>(std::min(count - done, largestTransfer));
        DWORD came = 0;
        if (!::ReadFile(file, bytes + done, wanted, &came, &place) || came == 0) break;
        done += came;
    }
    return done;
}

bool writePlace(HANDLE file, std::uint64_t offset, const void* bytes, std::size_t count) {
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        OVERLAPPED place = placeAt(offset);
        const auto wanted = static_cast<DWORD>(std::min(count, largestTransfer));
        DWORD went = 0;
        if (!::WriteFile(file, next, wanted, &went, &place) || went == 0) return false;
        next += went;
        offset += went;
        count -= went;
    }
    return true;
}

// The file under construction, in either way of putting it in place.
class WindowsTarget : public ByteTarget {
  public:
    explicit WindowsTarget(Handle file) : file_(std::move(file)) {}
    [[nodiscard]] bool writeAt(std::uint64_t offset, const void* bytes,
                               std::size_t count) override {
        if (!writePlace(file_.get(), offset, bytes, count)) {
            failed_ = true;
            return false;
        }
        if (count > 0 && offset + count > size_) size_ = offset + count;
        return true;
    }
    [[nodiscard]] std::size_t readAt(std::uint64_t offset, void* buffer,
                                     std::size_t count) override {
        return readPlace(file_.get(), offset, buffer, count);
    }
    [[nodiscard]] std::uint64_t size() const override { return size_; }

  protected:
    Handle file_;
    bool failed_ = false;

  private:
    std::uint64_t size_ = 0;
};

// Stands beside its target and is renamed onto it; an old file's rights stay.
class RenamedTarget final : public WindowsTarget {
  public:
    RenamedTarget(Handle file, std::wstring temporary, std::wstring target)
        : WindowsTarget(std::move(file)),
          temporary_(std::move(temporary)),
          target_(std::move(target)) {}
    ~RenamedTarget() override {
        file_.reset();
        if (!temporary_.empty()) ::DeleteFileW(temporary_.c_str());
    }
    [[nodiscard]] bool commit() override {
        if (failed_ || temporary_.empty()) return false;
        file_.reset();
        const wchar_t* from = temporary_.c_str();
        const wchar_t* to = target_.c_str();
        if (!::ReplaceFileW(to, from, nullptr, 0, nullptr, nullptr) &&
            !::MoveFileExW(from, to, MOVEFILE_REPLACE_EXISTING))
            return false;
        temporary_.clear();
        return true;
    }

  private:
    std::wstring temporary_;  // empty once it is in place
    std::wstring target_;
};

// For a pipe, a device, or a file in a directory that takes no new ones: a temporary file whose
// bytes go to the target in order when it is whole.
class SpooledTarget final : public WindowsTarget {
  public:
    SpooledTarget(Handle file, Handle target)
        : WindowsTarget(std::move(file)), target_(std::move(target)) {}
    [[nodiscard]] bool commit() override {
        if (failed_ || !target_) return false;
        const Handle target = std::move(target_);
        if (::GetFileType(target.get()) == FILE_TYPE_DISK && !::SetEndOfFile(target.get()))
            return false;
        std::vector<char> block(std::size_t{256} * 1024);
        for (std::uint64_t offset = 0; offset < size();) {
            const std::size_t came = readAt(offset, block.data(), block.size());
            if (came == 0 || !writeNext(target.get(), block.data(), came)) return false;
            offset += came;
        }
        return true;
    }

  private:
    static bool writeNext(HANDLE target, const char* bytes, std::size_t count) {
        while (count > 0) {
            DWORD went = 0;
            if (!::WriteFile(target, bytes, static_cast<DWORD>(count), &went, nullptr) || went == 0)
                return false;
            bytes += went;
            count -= went;
        }
        return true;
    }
    Handle target_;
};

std::unique_ptr<ByteTarget> spool(const std::wstring& path) {
    Handle target = openHandle(path, GENERIC_WRITE, FILE_SHARE_READ);
    std::u16string name;
    if (!target || !makeUniqueFile(temporaryDirectory(), u"bws", name).ok()) return nullptr;
    Handle file =
        openHandle(toWide(name), GENERIC_READ | GENERIC_WRITE, 0, FILE_FLAG_DELETE_ON_CLOSE);
    if (!file) return nullptr;
    return std::make_unique<SpooledTarget>(std::move(file), std::move(target));
}

std::u16string directoryOf(std::u16string_view path) {
    const std::size_t last = path.find_last_of(u"\\/:");
    return last == path.npos ? std::u16string(u".") : std::u16string(path.substr(0, last + 1));
}

bool isDevice(const std::wstring& path) {
    const Handle file = openHandle(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE);
    return file && ::GetFileType(file.get()) != FILE_TYPE_DISK;
}

}  // namespace

std::unique_ptr<ByteTarget> createFileTarget(std::u16string_view path) {
    const std::wstring target = nativePath(path);
    if (target.empty()) return nullptr;
    if (isDevice(target)) return spool(target);
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    // A file that may not be written isn't replaced either.
    if (exists && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return nullptr;
    std::u16string temporary;
    if (!makeUniqueFile(directoryOf(path), u"bw", temporary).ok())
        return exists ? spool(target) : nullptr;
    Handle file = openHandle(toWide(temporary), GENERIC_READ | GENERIC_WRITE, 0);
    if (!file) {
        ::DeleteFileW(toWide(temporary).c_str());
        return nullptr;
    }
    return std::make_unique<RenamedTarget>(std::move(file), toWide(temporary), target);
}

}  // namespace brushwork::platform
