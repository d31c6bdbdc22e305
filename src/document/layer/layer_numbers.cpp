#include "document/layer/layer_numbers.h"

namespace brushwork {
namespace {

struct Counters {
    std::int32_t ids = 0;
    std::int32_t names = 0;
};

Counters& counters() {
    static Counters both;
    return both;
}

}  // namespace

std::int32_t nextLayerId() {
    return counters().ids++;
}

znString::IString nextLayerName(const char* pattern) {
    znString::IString name;
    name.format(pattern, counters().names++);
    return name;
}

void restartLayerNumbers() {
    counters() = {};
}

}  // namespace brushwork
