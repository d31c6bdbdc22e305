// StackParts: the state of one canvas. The stack_ rooms are functions on it; LayerStack owns one
// and forwards to them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "brushwork/host_call_table.h"
#include "document/layer/layer_chain.h"
#include "document/layer/layer_group.h"
#include "document/stack/active_layer.h"
#include "document/stack/composite_caches.h"
#include "document/stack/damage.h"
#include "document/stack/display_target.h"
#include "document/stack/image_plane.h"
#include "document/stack/live_fill.h"
#include "document/stack/multi_transform.h"
#include "document/stack/painters.h"
#include "document/stack/scaled_path.h"
#include "document/stack/selection_state.h"
#include "document/stack/stack_view.h"

namespace brushwork {

// Accepted wherever an id or index is expected.
inline constexpr std::int32_t activeOne = -2;
inline constexpr std::int32_t noLayer = -1;

struct StackParts {
    StackParts() = default;
    StackParts(const StackParts&) = delete;
    StackParts& operator=(const StackParts&) = delete;

    LayerChain list;  // the top level; groups count as one
    ActiveLayer active;
    SelectionState selection;
    Painters painters;
    ImagePlane plane;
    StackView view;
    CompositeCaches caches;
    Damage damage;
    DisplayTarget display;
    ScaledPath scaled;
    LiveFill fill;
    MultiTransform transform;
    std::array<float, 4> backgroundColor{1.0f, 1.0f, 1.0f, 1.0f};
    bool useGlobalBackground = false;
    Ref<ilImage> cloneSource;  // an image used as brush source
    Ref<ilImage> savedStackImage;
    std::optional<HostTimerId> autoSaveTimer;
    bool isCurrent = true;  // set by the facade: this canvas is the one in front
    std::string nameTag;
};

}  // namespace brushwork
