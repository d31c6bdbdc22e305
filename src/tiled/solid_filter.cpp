#include "tiled/solid_filter.h"

namespace brushwork {

Ref<ResampleFilter> SolidFilter::clone() const {
    Ref<SolidFilter> copy = makeRef<SolidFilter>(edgeMode());
    copy->setFootprint(footprintW(), footprintH());
    copy->setPixel(pixel_);
    return copy;
}

void SolidFilter::sample1(std::uint8_t* out, double, double) {
    *out = static_cast<std::uint8_t>(pixel_);
}

void SolidFilter::sample4(std::uint8_t* out, double, double) {
    for (unsigned shift = 0; shift < 32; shift += 8)
        *out++ = static_cast<std::uint8_t>(pixel_ >> shift);
}

}  // namespace brushwork
