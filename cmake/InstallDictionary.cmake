# Installs share/dialog/data/<name> as a symbolic link to a MeCab dictionary
# directory of the system, so that an installed library or tool finds it with no
# set-up and follows the system's dictionary package rather than holding a copy:
#   data/ipadic -> DIALOG_IPADIC_DIR (component data-jpj),
#   data/unidic -> DIALOG_UNIDIC_DIR (component data-jpj-unidic).
#
# The link is made at install time, under $ENV{DESTDIR} and the prefix given
# then (cmake --install <build> --prefix <p>). It may dangle: the dictionary
# package need not be installed where the link is.

set(_dialog_link_install [=[
set(_dialog_datadir "@CMAKE_INSTALL_DATADIR@")
if(NOT IS_ABSOLUTE "${_dialog_datadir}")
  set(_dialog_datadir "${CMAKE_INSTALL_PREFIX}/${_dialog_datadir}")
endif()
set(_dialog_link "$ENV{DESTDIR}${_dialog_datadir}/dialog/data/@_dialog_name@")
get_filename_component(_dialog_link_parent "${_dialog_link}" DIRECTORY)
file(MAKE_DIRECTORY "${_dialog_link_parent}")
# A link left by an earlier install is replaced; a real directory is not touched.
if(IS_SYMLINK "${_dialog_link}")
  file(REMOVE "${_dialog_link}")
elseif(EXISTS "${_dialog_link}")
  message(FATAL_ERROR "${_dialog_link} exists and is not a symbolic link")
endif()
message(STATUS "Installing: ${_dialog_link} -> @_dialog_target@")
file(CREATE_LINK "@_dialog_target@" "${_dialog_link}" SYMBOLIC)
list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${_dialog_link}")
]=])

# The link data/<name> -> <target>, installed with `component`.
function(dialog_install_dictionary_link name target component)
  set(_dialog_name "${name}")
  set(_dialog_target "${target}")
  string(CONFIGURE "${_dialog_link_install}" code @ONLY)
  install(CODE "${code}" COMPONENT ${component})
endfunction()

dialog_install_dictionary_link(ipadic "${DIALOG_IPADIC_DIR}" data-jpj)
dialog_install_dictionary_link(unidic "${DIALOG_UNIDIC_DIR}" data-jpj-unidic)
