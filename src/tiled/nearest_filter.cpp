#include "tiled/nearest_filter.h"

namespace brushwork {

Ref<ResampleFilter> NearestFilter::clone() const {
    Ref<ResampleFilter> copy = makeRef<NearestFilter>(edgeMode());
    copy->setFootprint(footprintW(), footprintH());
    return copy;
}

void NearestFilter::sample1(std::uint8_t* out, double x, double y) {
    gather1(floorOf(x), floorOf(y), 1, 1, out);
}

void NearestFilter::sample4(std::uint8_t* out, double x, double y) {
    gather4(floorOf(x), floorOf(y), 1, 1, out);
}

}  // namespace brushwork
