#include "tools/reference_shape.h"

namespace brushwork::tools {

void serveShapes(HostCallTable& table) {
    table.shapeDataCreated = [](void* hostData, std::int32_t) { return hostData; };
    table.shapeCurve = [](HostShape shape, std::int32_t index) -> HostCurve {
        const auto& curves = static_cast<const ReferenceShape*>(shape)->curves;
        if (index < 0 || static_cast<std::size_t>(index) >= curves.size()) return nullptr;
        return curves[static_cast<std::size_t>(index)].get();
    };
}

}  // namespace brushwork::tools
