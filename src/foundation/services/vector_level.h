// Which width of vector instructions the pixel kernels use.
//
// Every kernel exists as plain scalar code, which defines its bytes, and in wider forms that give
// the same bytes. A kernel asks vectorLevel() once a call and takes the widest form it has up to
// that level. Tests and hosts can force a lower one.
#pragma once

namespace brushwork {

// Avx2 is AVX2 with FMA, which is only for what doesn't show in bytes.
enum class VectorLevel { Scalar, Sse2, Avx2 };

// The widest level of this processor, or the forced one. Any thread.
[[nodiscard]] VectorLevel vectorLevel() noexcept;

// Sets the level from now on; kernels that already run aren't touched. A level above what the
// processor has is lowered to that, so Avx2 puts the first state back. Any thread.
void forceVectorLevel(VectorLevel level) noexcept;

// "scalar", "sse2", "avx2".
[[nodiscard]] const char* vectorLevelName(VectorLevel level) noexcept;

// The form of the kernel that the calling thread ran last. Each form notes itself as it starts, so
// that a test of a vector form can tell that it wasn't the scalar one that answered.
void noteKernelForm(VectorLevel form) noexcept;
[[nodiscard]] VectorLevel lastKernelForm() noexcept;

}  // namespace brushwork
