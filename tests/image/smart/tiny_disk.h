// A disk that is soon full: a file system of its own for who may mount one, else a limit on the
// size of this process's files.
#pragma once

#include <sys/mount.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>

#include "image/swap/swap_place.h"
#include "platform/swap_io.h"

namespace brushwork::test {

class TinyDisk {
  public:
    // Takes swap files of `small` bytes in all until there is room again, then of `large`.
    TinyDisk(std::filesystem::path place, std::uint64_t small, std::uint64_t large)
        : place_(std::move(place)) {
        std::filesystem::create_directories(place_);
        const std::string options = "size=" + std::to_string(large);
        mounted_ = ::mount("none", place_.c_str(), "tmpfs", 0, options.c_str()) == 0;
        if (mounted_) {
            takeRoom(large - small);
            return;
        }
        ::getrlimit(RLIMIT_FSIZE, &former_);
        limit(small);
        formerHandler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    TinyDisk(const TinyDisk&) = delete;
    TinyDisk& operator=(const TinyDisk&) = delete;
    // No file on it may be open.
    ~TinyDisk() {
        if (mounted_) {
            ::umount2(place_.c_str(), MNT_DETACH);
            return;
        }
        ::setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, formerHandler_);
    }

    void makeRoom() {
        if (mounted_)
            std::filesystem::remove(place_ / "ballast");
        else
            ::setrlimit(RLIMIT_FSIZE, &former_);
    }
    [[nodiscard]] SwapDirectories directories() const {
        const std::u16string name = place_.u16string();
        return {name, name, name};
    }
    [[nodiscard]] bool isMounted() const { return mounted_; }

  private:
    void takeRoom(std::uint64_t bytes) const {
        const std::string page(65536, 'x');
        platform::PositionedFile file;
        if (!file.open((place_ / "ballast").u16string(), platform::PositionedFile::Mode::CreateNew))
            return;
        for (std::uint64_t at = 0; at < bytes; at += page.size())
            if (!file.writeAt(at, page.data(), page.size())) return;
    }
    void limit(std::uint64_t bytes) const {
        rlimit lower = former_;
        lower.rlim_cur = std::min<rlim_t>(bytes, former_.rlim_max);
        ::setrlimit(RLIMIT_FSIZE, &lower);
    }

    std::filesystem::path place_;
    bool mounted_ = false;
    rlimit former_{};
    void (*formerHandler_)(int) = SIG_DFL;
};

}  // namespace brushwork::test
