#include "facade/undo_switch.h"

#include "foundation/services/settings.h"

namespace brushwork {

bool UndoSwitch::isActive() const {
    return !undoDisabled() && !locked && enabled;
}

}  // namespace brushwork
