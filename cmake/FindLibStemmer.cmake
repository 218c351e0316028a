# Finds the Snowball stemming library (libstemmer), which ships neither a CMake
# nor a pkg-config file on Debian, and checks that it has the two-argument
# sb_stemmer_new(algorithm, encoding).
#
# Defines LibStemmer_FOUND, LibStemmer_INCLUDE_DIR, LibStemmer_LIBRARY and the
# imported target LibStemmer::LibStemmer.

find_path(LibStemmer_INCLUDE_DIR NAMES libstemmer.h PATH_SUFFIXES libstemmer)
find_library(LibStemmer_LIBRARY NAMES stemmer)

if(LibStemmer_INCLUDE_DIR AND LibStemmer_LIBRARY AND NOT DEFINED LibStemmer_HAS_TWO_ARG_NEW)
  include(CMakePushCheckState)
  cmake_push_check_state(RESET)
  set(CMAKE_REQUIRED_INCLUDES "${LibStemmer_INCLUDE_DIR}")
  set(CMAKE_REQUIRED_LIBRARIES "${LibStemmer_LIBRARY}")
  set(CMAKE_REQUIRED_QUIET ON)
  # Checked in whichever language the calling project has enabled.
  get_property(_stemmer_languages GLOBAL PROPERTY ENABLED_LANGUAGES)
  if("CXX" IN_LIST _stemmer_languages)
    include(CheckCXXSourceCompiles)
    set(_stemmer_check check_cxx_source_compiles)
  else()
    include(CheckCSourceCompiles)
    set(_stemmer_check check_c_source_compiles)
  endif()
  cmake_language(CALL ${_stemmer_check} [[
    #include <libstemmer.h>
    int main(void) {
      struct sb_stemmer* s = sb_stemmer_new("english", "UTF_8");
      sb_stemmer_delete(s);
      return 0;
    }]] LibStemmer_HAS_TWO_ARG_NEW)
  cmake_pop_check_state()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibStemmer
  REQUIRED_VARS LibStemmer_LIBRARY LibStemmer_INCLUDE_DIR LibStemmer_HAS_TWO_ARG_NEW
  REASON_FAILURE_MESSAGE "libstemmer must provide sb_stemmer_new(algorithm, encoding) (Debian: libstemmer-dev)")
mark_as_advanced(LibStemmer_INCLUDE_DIR LibStemmer_LIBRARY)

if(LibStemmer_FOUND AND NOT TARGET LibStemmer::LibStemmer)
  add_library(LibStemmer::LibStemmer UNKNOWN IMPORTED)
  set_target_properties(LibStemmer::LibStemmer PROPERTIES
    IMPORTED_LOCATION "${LibStemmer_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${LibStemmer_INCLUDE_DIR}")
endif()
