// Names of the files that client and helper exchange: requests, responses, pixels.
#pragma once

#include "brushwork/i_string.h"

namespace brushwork {

// A new name in the temporary directory, beginning "KVR" and ending ".tmp"; no file stands there.
// Empty if none could be made.
[[nodiscard]] znString::IString exchangeFileName();

}  // namespace brushwork
