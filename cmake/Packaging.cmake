# Debian packages, one per install component (cpack -G DEB in the build tree):
#   libdialog-stemmer1      runtime: libdialog-stemmer.so.1, libku.so
#   libdialog-stemmer-dev   development: headers, .so links, CMake and pkg-config files
#   dialog-stem             tool: the command-line tool and its manual page
#   dialog-stemmer-data-enu, -frf   the default lemma files with their licences
#   dialog-stemmer-data-jpj the link to Debian's IPA dictionary
#   python3-dialog-stemmer  the Python module
set(CPACK_PACKAGE_NAME dialog-stemmer)
set(CPACK_PACKAGE_VENDOR "dialog-stemmer")
set(CPACK_PACKAGE_CONTACT "dialog-stemmer maintainers <dialog-stemmer@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(dialog_runtime "libdialog-stemmer${PROJECT_VERSION_MAJOR}")
set(dialog_same "${dialog_runtime} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${dialog_runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libqt5core5a (>= 5.15), libstemmer0d, libmecab2")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libdialog-stemmer-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${dialog_same}, qtbase5-dev, libboost-dev, libstemmer-dev, libmecab-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME dialog-stem)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${dialog_same}")
set(CPACK_DEBIAN_TOOL_PACKAGE_RECOMMENDS "dialog-stemmer-data-enu, dialog-stemmer-data-frf")
set(CPACK_DEBIAN_DATA-ENU_PACKAGE_NAME dialog-stemmer-data-enu)
set(CPACK_DEBIAN_DATA-ENU_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DATA-FRF_PACKAGE_NAME dialog-stemmer-data-frf)
set(CPACK_DEBIAN_DATA-FRF_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DATA-JPJ_PACKAGE_NAME dialog-stemmer-data-jpj)
set(CPACK_DEBIAN_DATA-JPJ_PACKAGE_DEPENDS "mecab-ipadic-utf8")
set(CPACK_DEBIAN_DATA-JPJ_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-dialog-stemmer)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${dialog_same}, python3")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
include(CPack)
