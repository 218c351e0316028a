# Installs share/dialog/data/ipadic as a symbolic link to DIALOG_IPADIC_DIR, so
# that an installed library finds the segmenter's dictionary with no set-up and
# follows the system's dictionary package rather than holding a copy of it.
#
# The link is made at install time, under $ENV{DESTDIR} and the prefix given
# then (cmake --install <build> --prefix <p>).

set(_dialog_ipadic_install [=[
set(_dialog_datadir "@CMAKE_INSTALL_DATADIR@")
if(NOT IS_ABSOLUTE "${_dialog_datadir}")
  set(_dialog_datadir "${CMAKE_INSTALL_PREFIX}/${_dialog_datadir}")
endif()
set(_dialog_link "$ENV{DESTDIR}${_dialog_datadir}/dialog/data/ipadic")
get_filename_component(_dialog_link_parent "${_dialog_link}" DIRECTORY)
file(MAKE_DIRECTORY "${_dialog_link_parent}")
# A link left by an earlier install is replaced; a real directory is not touched.
if(IS_SYMLINK "${_dialog_link}")
  file(REMOVE "${_dialog_link}")
elseif(EXISTS "${_dialog_link}")
  message(FATAL_ERROR "${_dialog_link} exists and is not a symbolic link")
endif()
message(STATUS "Installing: ${_dialog_link} -> @DIALOG_IPADIC_DIR@")
file(CREATE_LINK "@DIALOG_IPADIC_DIR@" "${_dialog_link}" SYMBOLIC)
list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${_dialog_link}")
]=])
string(CONFIGURE "${_dialog_ipadic_install}" _dialog_ipadic_install @ONLY)
install(CODE "${_dialog_ipadic_install}" COMPONENT data-jpj)
unset(_dialog_ipadic_install)
