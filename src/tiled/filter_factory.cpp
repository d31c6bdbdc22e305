#include "tiled/filter_factory.h"

#include "tiled/bicubic_filter.h"
#include "tiled/bilinear_filter.h"
#include "tiled/lanczos_filter.h"
#include "tiled/nearest_filter.h"
#include "tiled/solid_filter.h"

namespace brushwork {

Ref<ResampleFilter> makeFilter(std::int32_t type, std::int32_t edgeMode) {
    const EdgeMode mode = edgeModeOf(edgeMode);
    if (!mode) return nullptr;
    switch (type) {
        case FilterNearest: return makeRef<NearestFilter>(mode);
        case FilterBilinear: return makeRef<BilinearFilter>(mode);
        case FilterBicubic: return makeRef<BicubicFilter>(mode);
        case FilterLanczos: return makeRef<LanczosFilter>(mode);
        case FilterSolid: return makeRef<SolidFilter>(mode);
        default: return nullptr;
    }
}

}  // namespace brushwork
