// A libtiff handle on our own byte streams.
//
// Nothing that the library has to say reaches stderr. What it reports about damaged data is noted
// instead: it often fills a gap with blank pixels and goes on, and a reader that wants whole
// pictures must not.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>

#include "platform/byte_stream.h"

namespace brushwork::platform {

class TiffHandle {
  public:
    // Reads the first directory. Null if there is none that is sane. The source outlives the
    // handle; several handles may share one source.
    [[nodiscard]] static std::unique_ptr<TiffHandle> openForReading(ByteSource& source);
    // `big` chooses 64-bit offsets, for files that could pass 4 GiB.
    [[nodiscard]] static std::unique_ptr<TiffHandle> openForWriting(ByteTarget& target, bool big);

    ~TiffHandle();
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;

    [[nodiscard]] TIFF* get() const { return tiff_; }

    // True once the library has reported an error, or data that ended too early.
    [[nodiscard]] bool damaged() const { return damaged_; }
    void forgetDamage() { damaged_ = false; }

  private:
    friend struct TiffCallbacks;

    TiffHandle() = default;
    [[nodiscard]] bool open(const char* mode);

    TIFF* tiff_ = nullptr;
    ByteSource* source_ = nullptr;
    ByteTarget* target_ = nullptr;
    std::uint64_t position_ = 0;
    bool damaged_ = false;
};

}  // namespace brushwork::platform
