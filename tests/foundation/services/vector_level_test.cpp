#include "foundation/services/vector_level.h"

#include <gtest/gtest.h>

#include <thread>

namespace brushwork {
namespace {

TEST(VectorLevel, ForcingNeverExceedsTheProcessor) {
    const VectorLevel widest = vectorLevel();
    forceVectorLevel(VectorLevel::Scalar);
    EXPECT_EQ(vectorLevel(), VectorLevel::Scalar);
    forceVectorLevel(VectorLevel::Avx2);
    EXPECT_EQ(vectorLevel(), widest);
#ifdef __x86_64__
    EXPECT_GE(widest, VectorLevel::Sse2);
#endif
}

TEST(VectorLevel, NotesAreOfEachThread) {
    noteKernelForm(VectorLevel::Sse2);
    std::thread([] {
        EXPECT_EQ(lastKernelForm(), VectorLevel::Scalar);
        noteKernelForm(VectorLevel::Avx2);
    }).join();
    EXPECT_EQ(lastKernelForm(), VectorLevel::Sse2);
}

}  // namespace
}  // namespace brushwork
