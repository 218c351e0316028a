# Installs the libraries, the public headers, the CMake package DialogStemmer
# and the pkg-config file dialog-stemmer.pc.
include(CMakePackageConfigHelpers)

set(DIALOG_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/DialogStemmer")

install(TARGETS ku dialog-stemmer
  EXPORT DialogStemmerTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES include/stemmer/stemmer.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/stemmer)
install(FILES include/ku/export.hpp include/ku/path.hpp include/ku/log.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ku)

install(EXPORT DialogStemmerTargets
  NAMESPACE DialogStemmer::
  DESTINATION ${DIALOG_CMAKE_DIR})
configure_package_config_file(cmake/DialogStemmerConfig.cmake.in
  "${PROJECT_BINARY_DIR}/DialogStemmerConfig.cmake"
  INSTALL_DESTINATION ${DIALOG_CMAKE_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/DialogStemmerConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/DialogStemmerConfig.cmake"
  "${PROJECT_BINARY_DIR}/DialogStemmerConfigVersion.cmake"
  cmake/FindLibStemmer.cmake
  cmake/FindMeCab.cmake
  DESTINATION ${DIALOG_CMAKE_DIR})

# pkg-config spells the prefix relative to the .pc file so that the installed
# tree may be moved.
configure_file(cmake/dialog-stemmer.pc.in "${PROJECT_BINARY_DIR}/dialog-stemmer.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/dialog-stemmer.pc"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
include(cmake/InstallDictionary.cmake)
