// One member of a group blended into a target.
//
// Under the brushes' own modes, from Replace on, a source of nothing changes the target: a layer of
// such a mode acts on its empty ground, too. Others cost nothing there.
#pragma once

#include "blending/core/blender.h"
#include "document/layer/group_render_request.h"
#include "document/layer/layer.h"

namespace brushwork {

struct MemberTarget {
    const GroupRenderRequest& request;
    const ilPageTileManager& area;  // document coordinates
    ilImage& image;
    // Where the image's pixel (0, 0) lies in the document.
    std::int32_t x = 0, y = 0;
};

// A layer that isn't a group, by its mode.
void drawMember(Layer& layer, const MemberTarget& target, float opacity);
// The cache of a group that isn't pass-through.
void drawMemberCache(Layer& group, ilImage& cache, const MemberTarget& target, float opacity);

}  // namespace brushwork
