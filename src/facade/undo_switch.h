// UndoSwitch: whether edits make undo records.
#pragma once

namespace brushwork {

struct UndoSwitch {
    bool locked = false;  // by the host
    bool enabled = true;

    // Never while the environment says so (settings.h).
    [[nodiscard]] bool isActive() const;
};

}  // namespace brushwork
