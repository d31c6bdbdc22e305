// ReferenceShape: a vector shape of the host's: the curves of its outline.
//
// A HostShape is a pointer to one. Of a shape that warps, curves come in pairs.
#pragma once

#include <memory>
#include <vector>

#include "tools/reference_curves.h"

namespace brushwork::tools {

struct ReferenceShape {
    std::vector<std::unique_ptr<ReferenceCurve>> curves;
};

// Fills the shape roles of a table: curves as they stand, the engine's own round tip.
void serveShapes(HostCallTable& table);

}  // namespace brushwork::tools
