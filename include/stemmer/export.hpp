#ifndef DIALOG_STEMMER_EXPORT_HPP
#define DIALOG_STEMMER_EXPORT_HPP

// Marks the stemming library's exported classes, functions and data; the rest
// of libdialog-stemmer is hidden. Its build defines DIALOG_STEMMER_BUILDING.
#if defined(_WIN32)
#if defined(DIALOG_STEMMER_BUILDING)
#define DIALOG_STEMMER_EXPORT __declspec(dllexport)
#else
#define DIALOG_STEMMER_EXPORT __declspec(dllimport)
#endif
#else
#define DIALOG_STEMMER_EXPORT __attribute__((visibility("default")))
#endif

#endif  // DIALOG_STEMMER_EXPORT_HPP
