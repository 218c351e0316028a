#ifndef DIALOG_TESTING_MEMORY_HPP
#define DIALOG_TESTING_MEMORY_HPP

#include <sys/resource.h>

#include <cstddef>

namespace dialog_test {

// Sanitizers' shadow memory and quarantine make resident sizes meaningless.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
#else
constexpr bool kSanitized = false;
#endif

// The process's peak resident size so far, in bytes.
inline std::size_t peakRss() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

// Whether the peak grew since `before` by at most `factor` times `inputSize`,
// plus 32 MiB of slack for the allocator; always true under sanitizers.
inline bool grewInProportion(std::size_t before, std::size_t inputSize, std::size_t factor) {
  return kSanitized || peakRss() - before <= factor * inputSize + (std::size_t{32} << 20);
}

}  // namespace dialog_test

#endif  // DIALOG_TESTING_MEMORY_HPP
