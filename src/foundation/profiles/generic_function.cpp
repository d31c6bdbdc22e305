#include "foundation/profiles/generic_function.h"

#include <atomic>

namespace brushwork {
namespace {

std::int32_t takeTypeIds(std::int32_t count) {
    static std::atomic<std::int32_t> next{1};
    return next.fetch_add(count);
}

}  // namespace

GenericFunction::~GenericFunction() = default;

bool GenericFunction::isConstant() const {
    return false;
}

const char* GenericFunction::name() const {
    return "function";
}

std::int32_t GenericFunction::typeIdOf(Family family) {
    static const std::int32_t first = takeTypeIds(4);
    return first + static_cast<std::int32_t>(family);
}

std::int32_t GenericFunction::newTypeId() {
    return takeTypeIds(1);
}

}  // namespace brushwork
