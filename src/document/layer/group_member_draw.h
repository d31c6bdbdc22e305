// One member of a group blended into a target.
//
// Under the brushes' own modes, from Replace on, a source of nothing changes the target: a layer of
// such a mode acts on its empty ground, too. Others cost nothing there.
#pragma once

#include <deque>

#include "blending/core/blend_pile.h"
#include "document/layer/group_render_request.h"
#include "document/layer/layer.h"
#include "document/layer/prepared_blend.h"

namespace brushwork {

struct MemberTarget {
    const GroupRenderRequest& request;
    const ilPageTileManager& area;  // document coordinates
    ilImage& image;
    // Where the image's pixel (0, 0) lies in the document.
    std::int32_t x = 0, y = 0;
};

// Members of one target that are blended as they stand, waiting for what lies over them.
class MemberPile {
  public:
    explicit MemberPile(const MemberTarget& target) : pile_(target.image, target.x, target.y) {}
    // The pixels stay until the pile has run.
    void put(ilSmartImage& color, Layer& layer, float opacity, const npc::TileSet& parts);
    void run();

  private:
    npc::BlendPile pile_;
    std::deque<PreparedBlend> blends_;
};

// A layer that isn't a group, by its mode: onto the pile, or straight into the target once the pile
// has run.
void drawMember(Layer& layer, const MemberTarget& target, float opacity, MemberPile& pile);
// The cache of a group that isn't pass-through.
void drawMemberCache(Layer& group, ilImage& cache, const MemberTarget& target, float opacity);

}  // namespace brushwork
