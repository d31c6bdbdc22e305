// The end of a process that no handler of the system brings.
#pragma once

namespace brushwork::platform {

// As a console's event ends the process: with -1, after what cleanUpOnSignals tells.
[[noreturn]] void endWithFailure();

}  // namespace brushwork::platform
