#include "brushwork/blend_mode_table.h"

namespace brushwork {

std::string_view blendModeName(BlendModeId mode) {
    switch (mode) {
#define BRUSHWORK_BLEND_MODE_NAME(name, id, type) \
    case BlendModeId::name: return #name;
        BRUSHWORK_BLEND_MODES(BRUSHWORK_BLEND_MODE_NAME)
#undef BRUSHWORK_BLEND_MODE_NAME
    }
    return {};
}

}  // namespace brushwork
