# `cpack --preset release` makes a Debian package of what is installed.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ombrel-record)
set(CPACK_PACKAGE_VENDOR "Ombrel Record")
set(CPACK_PACKAGE_CONTACT "The developers of Ombrel Record")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "screen recorder that makes finished films")
set(CPACK_PACKAGE_DESCRIPTION
  "Ombrel Record records a display or a window and makes a finished film of it:
waiting is sped up, a camera glides to clicks and to where the screen changes,
and everything stands on a styled backdrop with a smooth pointer, captions and
cards. It is adjusted in an editor, or made on the command line.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no library tells: the packages of the group "run".
file(STRINGS ${PROJECT_SOURCE_DIR}/Scripts/packages lines REGEX "^run ")
set(needed)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^run +([^#]*[^# ]) *#.*$" "\\1" names "${line}")
  separate_arguments(names)
  list(APPEND needed ${names})
endforeach()
list(JOIN needed ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pipewire-pulse | pulseaudio")
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS Scripts/packages)
include(CPack)
