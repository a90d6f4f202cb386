# What "cpack" makes of an installation: a Debian package of each component, and one archive of all.

set(CPACK_PACKAGE_NAME varnholt)
set(CPACK_PACKAGE_VENDOR Varnholt)
set(CPACK_PACKAGE_CONTACT "Varnholt <packages@varnholt.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Installs, updates and starts games of content servers")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(APPLE)
  set(CPACK_GENERATOR TGZ)
else()
  set(CPACK_GENERATOR DEB TGZ)
endif()

set(CPACK_COMPONENTS_ALL "")
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# varnholt_add_package(COMPONENT SUFFIX SECTION DEPENDS SUMMARY TEXT): the package varnholtSUFFIX.
macro(varnholt_add_package component suffix section depends summary text)
  string(TOUPPER ${component} upper)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME varnholt${suffix})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}")
endmacro()

varnholt_add_package(host "" utils "" "Game module and command-line host"
    "A launcher's module, which installs, updates and starts a game, and a
program that does for it what a launcher does.")
if(VARNHOLT_BUILD_TOOLS)
  varnholt_add_package(publisher -publisher utils "" "Publisher of games for content servers"
      "Turns the folder of a game into files that any web server with byte
ranges can serve.")
  varnholt_add_package(window -window utils "varnholt (= ${PROJECT_VERSION})" "Window of the games"
      "Shows the games of the modules that are installed, and installs, updates
and starts them.")
endif()
varnholt_add_package(development -dev libdevel
    "varnholt (= ${PROJECT_VERSION}), libcpp-httplib-dev, libcurl4-openssl-dev, libsodium-dev, pkg-config, qtbase5-dev, qtkeychain-qt5-dev"
    "Libraries and headers for launchers and game modules"
    "What a launcher of one's own, or the module of another game, is built with
by CMake.")

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/VarnholtDebian.cmake)
include(CPack)
