// The signals that a process started by this one finds blocked.
#pragma once

#include <csignal>

namespace brushwork::platform {

// What was blocked here before cleanUpOnSignals; null where that wasn't called: a child inherits.
const sigset_t* signalMaskForChildren();

}  // namespace brushwork::platform
