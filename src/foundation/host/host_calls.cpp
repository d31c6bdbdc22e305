#include "foundation/host/host_calls.h"

#include "brushwork/host_call_table.h"

namespace brushwork {

std::int32_t hostDebugLevel() noexcept {
    const auto call = hostCallTable().debugLevel;
    return call ? call() : 0;
}

}  // namespace brushwork
