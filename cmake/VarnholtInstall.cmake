# What "cmake --install" puts where; the places are in VarnholtFolders.cmake.

install(TARGETS Pelmora LIBRARY DESTINATION ${varnholt_module_folder})

set(documents ${CMAKE_INSTALL_DATADIR}/doc/varnholt)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${documents})
install(DIRECTORY docs DESTINATION ${documents})
install(PROGRAMS scripts/mirror scripts/mirror-bucket DESTINATION ${documents}/scripts)

if(VARNHOLT_BUILD_TOOLS)
  install(TARGETS ${varnholt_programs} RUNTIME DESTINATION ${varnholt_programs_folder})
  foreach(page IN LISTS varnholt_page_files)
    get_filename_component(folder ${page} DIRECTORY)
    if(folder MATCHES "^man/(.*)")
      set(destination ${CMAKE_INSTALL_MANDIR}/${CMAKE_MATCH_1})
    else()
      set(destination ${CMAKE_INSTALL_DATADIR}/${folder})
    endif()
    install(FILES ${varnholt_pages_folder}/${page} DESTINATION ${destination})
  endforeach()
endif()
