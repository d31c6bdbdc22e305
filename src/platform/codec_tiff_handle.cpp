#include "platform/codec_tiff_handle.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "platform/codec_tiff_directory.h"

namespace brushwork::platform {

namespace {

struct OptionsDeleter {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

// No single block of the library's is larger than the file, beyond this.
constexpr std::uint64_t freeBlockBytes = std::uint64_t{256} << 20;

tmsize_t largestBlock(const ByteSource* source) {
    const std::uint64_t wanted = source ? std::max(source->size(), freeBlockBytes) : freeBlockBytes;
    return static_cast<tmsize_t>(std::min(wanted, static_cast<std::uint64_t>(TIFF_TMSIZE_T_MAX)));
}

}  // namespace

// What the library calls. A count of at least 0 is its promise.
struct TiffCallbacks {
    static TiffHandle& self(thandle_t handle) { return *static_cast<TiffHandle*>(handle); }

    static tmsize_t read(thandle_t handle, void* buffer, tmsize_t count) {
        TiffHandle& me = self(handle);
        const auto wanted = static_cast<std::size_t>(count);
        const std::size_t got = me.source_ ? me.source_->readAt(me.position_, buffer, wanted)
                                           : me.target_->readAt(me.position_, buffer, wanted);
        me.position_ += got;
        return static_cast<tmsize_t>(got);
    }

    static tmsize_t write(thandle_t handle, void* buffer, tmsize_t count) {
        TiffHandle& me = self(handle);
        const auto wanted = static_cast<std::size_t>(count);
        if (!me.target_ || !me.target_->writeAt(me.position_, buffer, wanted)) {
            me.damaged_ = true;
            return 0;
        }
        me.position_ += wanted;
        return count;
    }

    static toff_t seek(thandle_t handle, toff_t offset, int whence) {
        TiffHandle& me = self(handle);
        if (whence == SEEK_CUR) offset += me.position_;
        if (whence == SEEK_END) offset += size(handle);
        return me.position_ = offset;
    }

    static toff_t size(thandle_t handle) {
        const TiffHandle& me = self(handle);
        return me.source_ ? me.source_->size() : me.target_->size();
    }

    static int close(thandle_t) { return 0; }

    static int error(TIFF*, void* handle, const char*, const char*, va_list) {
        self(handle).damaged_ = true;
        return 1;
    }

    // Only the fax and JPEG decoders end a picture early with no more than a warning.
    static int warning(TIFF*, void* handle, const char*, const char* format, va_list values) {
        char text[256] = {};
        std::vsnprintf(text, sizeof text, format, values);
        if (std::strstr(text, "Premature") || std::strstr(text, "premature"))
            self(handle).damaged_ = true;
        return 1;
    }
};

std::unique_ptr<TiffHandle> TiffHandle::openForReading(ByteSource& source) {
    if (!tiffDirectoryIsSane(source)) return nullptr;
    std::unique_ptr<TiffHandle> handle(new TiffHandle);
    handle->source_ = &source;
    // No memory mapping; strips as the file has them.
    if (!handle->open("rmc")) return nullptr;
    return handle;
}

std::unique_ptr<TiffHandle> TiffHandle::openForWriting(ByteTarget& target, bool big) {
    std::unique_ptr<TiffHandle> handle(new TiffHandle);
    handle->target_ = &target;
    if (!handle->open(big ? "wm8" : "wm")) return nullptr;
    return handle;
}

bool TiffHandle::open(const char* mode) {
    const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    if (!options) return false;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), largestBlock(source_));
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), TiffCallbacks::error, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), TiffCallbacks::warning, this);
    tiff_ = TIFFClientOpenExt("picture", mode, this, TiffCallbacks::read, TiffCallbacks::write,
                              TiffCallbacks::seek, TiffCallbacks::close, TiffCallbacks::size,
                              nullptr, nullptr, options.get());
    return tiff_ != nullptr;
}

TiffHandle::~TiffHandle() {
    if (tiff_) TIFFClose(tiff_);
}

}  // namespace brushwork::platform
