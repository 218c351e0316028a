# Finds the MeCab morphological analyser through mecab-config, falling back to
# a plain header and library search.
#
# Defines MeCab_FOUND, MeCab_INCLUDE_DIR, MeCab_LIBRARY, MeCab_LIBEXEC_DIR (where
# mecab-dict-index lives, when mecab-config knows it) and the imported target
# MeCab::MeCab.

find_program(MeCab_CONFIG_EXECUTABLE NAMES mecab-config)
mark_as_advanced(MeCab_CONFIG_EXECUTABLE)

set(_mecab_hint_inc "")
set(_mecab_hint_lib "")
if(MeCab_CONFIG_EXECUTABLE)
  execute_process(COMMAND "${MeCab_CONFIG_EXECUTABLE}" --inc-dir
    OUTPUT_VARIABLE _mecab_hint_inc OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  execute_process(COMMAND "${MeCab_CONFIG_EXECUTABLE}" --libs-only-L
    OUTPUT_VARIABLE _mecab_hint_lib OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  string(REGEX REPLACE "^-L" "" _mecab_hint_lib "${_mecab_hint_lib}")
  execute_process(COMMAND "${MeCab_CONFIG_EXECUTABLE}" --libexecdir
    OUTPUT_VARIABLE _mecab_libexec OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  set(MeCab_LIBEXEC_DIR "${_mecab_libexec}" CACHE PATH "Directory of MeCab's helper programs")
endif()

find_path(MeCab_INCLUDE_DIR NAMES mecab.h HINTS ${_mecab_hint_inc})
find_library(MeCab_LIBRARY NAMES mecab HINTS ${_mecab_hint_lib})
mark_as_advanced(MeCab_INCLUDE_DIR MeCab_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MeCab
  REQUIRED_VARS MeCab_LIBRARY MeCab_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "on Debian install libmecab-dev")

if(MeCab_FOUND AND NOT TARGET MeCab::MeCab)
  add_library(MeCab::MeCab UNKNOWN IMPORTED)
  set_target_properties(MeCab::MeCab PROPERTIES
    IMPORTED_LOCATION "${MeCab_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${MeCab_INCLUDE_DIR}")
endif()
