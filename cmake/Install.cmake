# Installs the libraries, the public headers, the CMake package DialogStemmer
# and the pkg-config file dialog-stemmer.pc.
include(CMakePackageConfigHelpers)

set(DIALOG_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/DialogStemmer")

# Components, for `cmake --install --component`: runtime (the shared
# libraries), development (headers, CMake and pkg-config files, the .so links),
# tool, data-enu, data-frf, data-jpj, data-jpj-unidic and python. The Debian packages in
# debian/ split the same files by their debian/*.install lists.
install(TARGETS ku dialog-stemmer
  EXPORT DialogStemmerTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(FILES include/stemmer/stemmer.hpp include/stemmer/export.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/stemmer
  COMPONENT development)
install(FILES include/ku/export.hpp include/ku/path.hpp include/ku/log.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ku COMPONENT development)

install(EXPORT DialogStemmerTargets
  NAMESPACE DialogStemmer::
  DESTINATION ${DIALOG_CMAKE_DIR} COMPONENT development)
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
  DESTINATION ${DIALOG_CMAKE_DIR} COMPONENT development)

# pkg-config spells the prefix relative to the .pc file by default, so that the
# installed tree may be moved: one ".." per folder of the library folder (lib,
# or lib/x86_64-linux-gnu) plus one for pkgconfig. Distribution packages turn
# that off for plain absolute paths; absolute folders always stay absolute.
option(DIALOG_RELOCATABLE_PKGCONFIG "Spell the pkg-config prefix relative to the .pc file" ON)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR NOT DIALOG_RELOCATABLE_PKGCONFIG)
  set(DIALOG_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  string(REGEX REPLACE "[^/]+" ".." up "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  set(DIALOG_PC_PREFIX "\${pcfiledir}/${up}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(DIALOG_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
  set(DIALOG_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(DIALOG_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
else()
  set(DIALOG_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(cmake/dialog-stemmer.pc.in "${PROJECT_BINARY_DIR}/dialog-stemmer.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/dialog-stemmer.pc"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
include(cmake/InstallDictionary.cmake)
