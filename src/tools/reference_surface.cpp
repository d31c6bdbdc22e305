#include "tools/reference_surface.h"

namespace brushwork::tools {

ReferenceSurface::ReferenceSurface(std::int32_t width, std::int32_t height) {
    if (width < 1 || height < 1 || width > mostPixels || height > mostPixels) return;
    const std::uint64_t bytes =
        std::uint64_t{4} * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (bytes > pixels_.max_size()) return;
    pixels_.resize(static_cast<std::size_t>(bytes));
    width_ = width;
    height_ = height;
}

}  // namespace brushwork::tools
