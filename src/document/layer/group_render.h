// Drawing a group: its cache brought up to date, or its members straight into the caller's target.
//
// A cache is drawn where it is out of date and nowhere else: a dirty tile costs the members that
// reach it. All of a cache is drawn anew when it was marked as a whole, or for another tag; then
// wherever members have pixels, and where the request asks.
//
// Members are drawn from the bottom up: paint layers and groups that are visible, not next to
// invisible, and meet the flags asked for. Masks and stencils act on the layers that they are
// attached to; only the one that is being painted is shown. Whether the groups around a cached
// group are visible is nothing to its cache.
#pragma once

#include "document/layer/layer_group.h"

namespace brushwork {

class GroupRender {
  public:
    [[nodiscard]] static Ref<ilImage> run(LayerGroup& group, GroupRenderRequest request);

  private:
    static Ref<ilImage> drawThrough(LayerGroup& group, const GroupRenderRequest& request);
    static Ref<ilImage> drawCache(LayerGroup& group, const GroupRenderRequest& request);
};

}  // namespace brushwork
