// A temporary file without a lasting name, for data that must not stay in memory.
//
// It stands in the directory for temporary files and is gone with the object. Where the system
// lets an open file lose its name it has none from the start, so that nothing is left behind even
// if the process is killed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/swap_io.h"

namespace brushwork::platform {

class ScratchFile {
  public:
    ScratchFile() = default;
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile();

    // Once. Throws nothing but for memory.
    [[nodiscard]] bool open();
    // True if all bytes came or went.
    [[nodiscard]] bool readAt(std::uint64_t offset, void* buffer, std::size_t count);
    [[nodiscard]] bool writeAt(std::uint64_t offset, const void* bytes, std::size_t count);

  private:
    PositionedFile file_;
    std::u16string path_;  // empty as soon as the name is gone
};

}  // namespace brushwork::platform
