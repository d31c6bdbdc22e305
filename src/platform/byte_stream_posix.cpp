#include "platform/byte_stream.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "platform/clean_up.h"
#include "platform/file_calls_posix.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

// The file under construction, in either way of putting it in place.
class PosixTarget : public ByteTarget {
  public:
    explicit PosixTarget(FileDescriptor file) : file_(std::move(file)) {}
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
    FileDescriptor file_;
    bool failed_ = false;

  private:
    std::uint64_t size_ = 0;
};

// Stands beside its target and is renamed onto it.
class RenamedTarget final : public PosixTarget {
  public:
    RenamedTarget(FileDescriptor file, std::string temporary, std::string target)
        : PosixTarget(std::move(file)),
          temporary_(std::move(temporary)),
          target_(std::move(target)) {
        notePartialFile(fromUtf8(temporary_));
    }
    ~RenamedTarget() override {
        if (temporary_.empty()) return;
        (void)::unlink(temporary_.c_str());
        dropPartialFile(fromUtf8(temporary_));
    }
    [[nodiscard]] bool commit() override {
        if (failed_ || temporary_.empty() || !file_.close()) return false;
        if (::rename(temporary_.c_str(), target_.c_str()) != 0) return false;
        dropPartialFile(fromUtf8(temporary_));
        temporary_.clear();
        return true;
    }

  private:
    std::string temporary_;  // empty once it is in place
    std::string target_;
};

// For a pipe, a device, or a file in a directory that takes no new ones: a nameless temporary file
// whose bytes go to the target in order when it is whole.
class SpooledTarget final : public PosixTarget {
  public:
    SpooledTarget(FileDescriptor file, FileDescriptor target)
        : PosixTarget(std::move(file)), target_(std::move(target)) {}
    [[nodiscard]] bool commit() override {
        if (failed_ || !target_.isOpen()) return false;
        struct stat found {};
        if (::fstat(target_.get(), &found) != 0) return false;
        if (S_ISREG(found.st_mode) && ::ftruncate(target_.get(), 0) != 0) return false;
        if (::lseek(file_.get(), 0, SEEK_SET) != 0) return false;
        return copyDescriptor(file_.get(), target_.get()) && target_.close();
    }

  private:
    FileDescriptor target_;
};

std::unique_ptr<ByteTarget> spool(const std::string& path) {
    FileDescriptor target = openDescriptor(path, O_WRONLY);
    if (!target.isOpen()) return nullptr;
    const EndingHold hold;  // while the file has a name
    std::string name;
    const std::string stem = toUtf8(temporaryDirectory()) + "/bws";
    FileDescriptor file = openUniqueFile(stem, 0600, name);
    if (!file.isOpen()) return nullptr;
    (void)::unlink(name.c_str());
    return std::make_unique<SpooledTarget>(std::move(file), std::move(target));
}

std::string directoryOf(const std::string& path) {
    const std::size_t last = path.find_last_of('/');
    return last == std::string::npos ? std::string() : path.substr(0, last + 1);
}

// What a path means behind symbolic links; its last part need not exist. Empty in a loop of links.
std::string behindLinks(std::string path) {
    constexpr int mostLinks = 40;
    for (int count = 0; count < mostLinks; ++count) {
        std::string link(PATH_MAX, '\0');
        const ssize_t length = ::readlink(path.c_str(), link.data(), link.size());
        if (length <= 0) return path;
        link.resize(static_cast<std::size_t>(length));
        path = link[0] == '/' ? link : directoryOf(path) + link;
    }
    return {};
}

std::string realPath(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(::realpath(path.c_str(), nullptr),
                                                          std::free);
    return resolved ? std::string(resolved.get()) : std::string();
}

// The rights and, where we may give it away, the owner of the file that is going to be replaced.
bool takeOver(int file, const struct stat& old) {
    if (::fchown(file, old.st_uid, old.st_gid) != 0 && errno != EPERM) return false;
    return ::fchmod(file, old.st_mode & 0777U) == 0;
}

}  // namespace

std::unique_ptr<ByteTarget> createFileTarget(std::u16string_view path) {
    const std::string name = NativePath(path).text();
    if (name.empty() || name.back() == '/') return nullptr;
    struct stat old {};
    const bool exists = ::stat(name.c_str(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode)) return nullptr;
    if (exists && !S_ISREG(old.st_mode)) return spool(name);
    // A file that may not be written isn't replaced either.
    if (exists && ::access(name.c_str(), W_OK) != 0) return nullptr;

    std::string target = exists ? realPath(name) : behindLinks(name);
    if (target.empty()) return exists ? spool(name) : nullptr;
    const EndingHold hold;  // until the file is noted
    std::string temporary;
    FileDescriptor file = openUniqueFile(directoryOf(target) + ".bw", 0666, temporary);
    if (!file.isOpen()) return exists ? spool(name) : nullptr;
    const int number = file.get();
    auto result = std::make_unique<RenamedTarget>(std::move(file), temporary, std::move(target));
    if (exists && !takeOver(number, old)) return nullptr;
    return result;
}

}  // namespace brushwork::platform
