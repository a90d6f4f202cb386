# What "cmake --install" puts where, and in which package it goes; the places are in
# VarnholtFolders.cmake.

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Varnholt)
set(headers_folder ${CMAKE_INSTALL_INCLUDEDIR}/varnholt)
set(documents_folder ${CMAKE_INSTALL_DATADIR}/doc/varnholt)

if(APPLE)
  set(frameworks RUNTIME_DEPENDENCY_SET varnholt_frameworks)
  set_target_properties(Pelmora PROPERTIES INSTALL_RPATH @loader_path/../Frameworks)
endif()
install(TARGETS Pelmora ${frameworks}
    LIBRARY DESTINATION ${VARNHOLT_MODULE_FOLDER} COMPONENT host)
if(APPLE)
  install(${frameworks} PRE_EXCLUDE_REGEXES "^/usr/lib/" "^/System/"
      FRAMEWORK DESTINATION ${VARNHOLT_MODULE_FOLDER}/../Frameworks COMPONENT host)
endif()

install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md LICENSE DESTINATION ${documents_folder} COMPONENT host)
install(DIRECTORY docs DESTINATION ${documents_folder} COMPONENT host)
install(PROGRAMS scripts/mirror scripts/mirror-bucket
    DESTINATION ${documents_folder}/scripts COMPONENT publisher)

if(VARNHOLT_BUILD_TOOLS)
  foreach(program IN LISTS varnholt_programs)
    set(component ${varnholt_${program}_component})
    install(TARGETS ${program} RUNTIME DESTINATION ${varnholt_programs_folder} COMPONENT ${component})
    foreach(page IN LISTS varnholt_${program}_pages)
      get_filename_component(folder ${page} DIRECTORY)
      if(folder MATCHES "^man/(.*)")
        set(destination ${CMAKE_INSTALL_MANDIR}/${CMAKE_MATCH_1})
      else()
        set(destination ${CMAKE_INSTALL_DATADIR}/${folder})
      endif()
      install(FILES ${varnholt_pages_folder}/${page}
          DESTINATION ${destination} COMPONENT ${component})
    endforeach()
  endforeach()

  set(desktop Host/Window/Desktop/Files)
  install(FILES ${desktop}/varnholt-window.desktop
      DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT window)
  install(FILES ${desktop}/varnholt-window.svg
      DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT window)
  install(FILES ${desktop}/varnholt-window.png
      DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/128x128/apps COMPONENT window)
  install(FILES ${desktop}/net.varnholt.window.metainfo.xml
      DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT window)
endif()

# What other projects build with: "find_package(Varnholt)".
set(libraries "")
foreach(name IN ITEMS Common Launcher StandartApplication Files Programs Signing Gateway HostCore)
  if(TARGET Varnholt::${name})
    get_target_property(library Varnholt::${name} ALIASED_TARGET)
    set_target_properties(${library} PROPERTIES EXPORT_NAME ${name})
    list(APPEND libraries ${library})
  endif()
endforeach()
install(TARGETS ${libraries} EXPORT VarnholtTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${headers_folder})
install(EXPORT VarnholtTargets NAMESPACE Varnholt::
    DESTINATION ${package_folder} COMPONENT development)
install(DIRECTORY Launcher GameModules Files Signing Host
    DESTINATION ${headers_folder} COMPONENT development
    FILES_MATCHING PATTERN *.hpp
    PATTERN GameModules/Pelmora EXCLUDE PATTERN Host/Cli EXCLUDE PATTERN Host/Window EXCLUDE)

include(CMakePackageConfigHelpers)
configure_package_config_file(
    cmake/VarnholtConfig.cmake.in ${PROJECT_BINARY_DIR}/VarnholtConfig.cmake
    INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/VarnholtConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
    FILES
        ${PROJECT_BINARY_DIR}/VarnholtConfig.cmake
        ${PROJECT_BINARY_DIR}/VarnholtConfigVersion.cmake
        cmake/VarnholtGameModule.cmake
    DESTINATION ${package_folder} COMPONENT development)
install(DIRECTORY examples DESTINATION ${documents_folder} COMPONENT development)
