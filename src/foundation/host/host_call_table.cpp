#include "brushwork/host_call_table.h"

namespace brushwork {

HostCallTable& hostCallTable() noexcept {
    static HostCallTable table;
    return table;
}

void clearHostCallTable() noexcept {
    hostCallTable() = HostCallTable{};
}

}  // namespace brushwork
