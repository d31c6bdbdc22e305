// Which sanitizers the build runs under. They reserve terabytes of address space, slow everything
// down and look for leaks with a process of their own.
#pragma once

namespace brushwork::platform {

#if defined(__has_feature)  // clang
#if __has_feature(address_sanitizer)
inline constexpr bool addressSanitized = true;
#else
inline constexpr bool addressSanitized = false;
#endif
#if __has_feature(thread_sanitizer)
inline constexpr bool threadSanitized = true;
#else
inline constexpr bool threadSanitized = false;
#endif
#else
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool addressSanitized = true;
#else
inline constexpr bool addressSanitized = false;
#endif
#if defined(__SANITIZE_THREAD__)
inline constexpr bool threadSanitized = true;
#else
inline constexpr bool threadSanitized = false;
#endif
#endif
inline constexpr bool sanitized = addressSanitized || threadSanitized;

}  // namespace brushwork::platform
