# Where things are in an installation. The programs know of it even when a project that embeds the
# module builds them, and installs nothing of it.

if(VARNHOLT_IS_TOP)
  include(GNUInstallDirs)
  set(varnholt_programs_folder ${CMAKE_INSTALL_BINDIR})
  set(libraries ${CMAKE_INSTALL_LIBDIR})
else()
  set(varnholt_programs_folder bin)
  set(libraries lib)
endif()
# For projects that bring modules of their own too.
set(VARNHOLT_MODULE_FOLDER ${libraries}/varnholt/modules CACHE INTERNAL "Below the prefix")

# Relative, so that an installation can be moved as a whole.
get_filename_component(programs ${varnholt_programs_folder} ABSOLUTE BASE_DIR ${CMAKE_INSTALL_PREFIX})
get_filename_component(module ${VARNHOLT_MODULE_FOLDER} ABSOLUTE BASE_DIR ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH varnholt_module_folder_of_programs ${programs} ${module})

# What varnholt-pages makes about each program.
set(varnholt_programs varnholt-host varnholt-publish varnholt-window)
set(varnholt_varnholt-host_component host)
set(varnholt_varnholt-publish_component publisher)
set(varnholt_varnholt-window_component window)
set(varnholt_pages_folder ${PROJECT_BINARY_DIR}/share)
foreach(program IN LISTS varnholt_programs)
  set(varnholt_${program}_pages
      man/man1/${program}.1
      bash-completion/completions/${program}
      zsh/site-functions/_${program}
      fish/vendor_completions.d/${program}.fish
  )
endforeach()

# Where Qt was found is where the installed programs find it too.
if(VARNHOLT_IS_TOP)
  set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
endif()
