// How the tests were built, for what depends on the size of stack frames.
#pragma once

namespace KelpTest {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || \
    __has_feature(thread_sanitizer)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
#else
inline constexpr bool kSanitized = false;
#endif

#ifdef __OPTIMIZE__
inline constexpr bool kOptimized = true;
#else
inline constexpr bool kOptimized = false;
#endif

}  // namespace KelpTest
