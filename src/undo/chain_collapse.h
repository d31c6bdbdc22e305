// Archiving a stroke: its images are folded into those of the next record on the same layer.
#pragma once

#include "brushwork/pnt_undo_database.h"

namespace brushwork {

class PntUndoStroke;

// Broken chains are logged and repaired.
void collapseChain(PntUndoDatabase& database, PntUndoStroke& archived);

}  // namespace brushwork
