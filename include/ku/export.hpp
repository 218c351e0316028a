#ifndef KU_EXPORT_HPP
#define KU_EXPORT_HPP

// Marks the platform layer's public symbols; everything else in libku is hidden.
#if defined(_WIN32)
#if defined(KU_BUILDING)
#define KU_EXPORT __declspec(dllexport)
#else
#define KU_EXPORT __declspec(dllimport)
#endif
#else
#define KU_EXPORT __attribute__((visibility("default")))
#endif

#endif  // KU_EXPORT_HPP
