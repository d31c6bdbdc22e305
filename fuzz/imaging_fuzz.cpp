// Any bytes, as a picture: opened, and decoded in both forms.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/imaging.h"

namespace {

using namespace brushwork::platform;

// A picture larger than this is opened but not decoded: time is for the decoders' branches.
constexpr std::int64_t mostPixels = 4 << 20;

class CountingSink final : public RowSink {
  public:
    explicit CountingSink(std::int32_t width) : rowBytes_(static_cast<std::size_t>(width) * 4) {}
    bool putRows(std::int32_t, std::int32_t count, const std::uint8_t* bgra) override {
        // Reads every byte, so that the sanitizer sees a short buffer.
        unsigned sum = 0;
        for (std::size_t i = 0; i < rowBytes_ * static_cast<std::size_t>(count); ++i)
            sum += bgra[i];
        sum_ = sum;
        return true;
    }

  private:
    std::size_t rowBytes_;
    volatile unsigned sum_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const PixelFormat format : {PixelFormat::Argb32, PixelFormat::Pargb32}) {
        ImagingStatus status = ImagingStatus::Ok;
        const auto picture = imagingService().openMemory({data, size}, status);
        if (!picture) return 0;
        if (std::int64_t{picture->width()} * picture->height() > mostPixels) return 0;
        CountingSink sink(picture->width());
        static_cast<void>(picture->readRows(format, sink));
    }
    return 0;
}
