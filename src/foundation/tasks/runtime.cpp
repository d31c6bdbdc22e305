#include "brushwork/runtime.h"

#include <utility>

#include "foundation/services/log.h"
#include "foundation/services/random_source.h"
#include "foundation/services/vector_level.h"
#include "foundation/tasks/task_pool.h"

namespace brushwork::runtime {

void setLogSink(std::function<void(std::string_view text)> sink) {
    brushwork::setLogSink(std::move(sink));
}

void setRandomSeed(std::uint64_t seed) {
    seedRandom(seed);
}

VectorWidth limitVectorWidth(VectorWidth widest) {
    forceVectorLevel(static_cast<VectorLevel>(widest));
    return static_cast<VectorWidth>(vectorLevel());
}

std::int32_t setWorkerCount(std::int32_t count) {
    TaskPool::setDefaultSize(count);
    return TaskPool::defaultSize();
}

static_assert(static_cast<int>(VectorWidth::Scalar) == static_cast<int>(VectorLevel::Scalar));
static_assert(static_cast<int>(VectorWidth::Bits128) == static_cast<int>(VectorLevel::Sse2));
static_assert(static_cast<int>(VectorWidth::Bits256) == static_cast<int>(VectorLevel::Avx2));

}  // namespace brushwork::runtime
