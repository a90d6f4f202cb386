# varnholt_add_game_module(NAME name CLASS class IDENTIFIER id [SOURCES ...] [RESOURCES ...])
#
# Builds the plug-in "name", which launchers load, in "plugins" of the build folder.
#   CLASS       derived from StandartApplication, in class.hpp, class.cpp and class.json, which holds
#               the plug-in's metadata
#   IDENTIFIER  of the game, in addresses and settings; its sources have it as
#               VARNHOLT_MODULE_IDENTIFIER
#   SOURCES     what else it is made of
#   RESOURCES   pictures and the like, to be read as ":/app_id/" and the file's name
# The class is the object library nameObjects as well, for what links it without loading it.
function(varnholt_add_game_module)
  cmake_parse_arguments(PARSE_ARGV 0 MODULE "" "NAME;CLASS;IDENTIFIER" "SOURCES;RESOURCES")
  foreach(argument IN ITEMS NAME CLASS IDENTIFIER)
    if(NOT MODULE_${argument})
      message(FATAL_ERROR "varnholt_add_game_module: ${argument} is missing")
    endif()
  endforeach()
  if(MODULE_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "varnholt_add_game_module: unknown: ${MODULE_UNPARSED_ARGUMENTS}")
  endif()

  set(objects ${MODULE_NAME}Objects)
  add_library(${objects} OBJECT ${MODULE_CLASS}.cpp ${MODULE_CLASS}.hpp ${MODULE_SOURCES})
  set_target_properties(${objects} PROPERTIES
      AUTOMOC ON
      POSITION_INDEPENDENT_CODE ON
      # Two modules in one launcher must not meet each other's code.
      CXX_VISIBILITY_PRESET hidden
      VISIBILITY_INLINES_HIDDEN ON)
  target_compile_definitions(${objects} PRIVATE VARNHOLT_MODULE_IDENTIFIER="${MODULE_IDENTIFIER}")
  # Unique symbols would pin a loaded module in memory, images and all.
  target_compile_options(${objects} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  target_link_libraries(${objects} PUBLIC Varnholt::StandartApplication)

  set(list ${CMAKE_CURRENT_BINARY_DIR}/${MODULE_NAME}.qrc)
  set(files "")
  foreach(resource IN LISTS MODULE_RESOURCES)
    get_filename_component(file ${resource} ABSOLUTE)
    get_filename_component(alias ${resource} NAME)
    string(APPEND files "<file alias=\"${alias}\">${file}</file>\n")
  endforeach()
  file(CONFIGURE OUTPUT ${list} @ONLY
      CONTENT "<RCC><qresource prefix=\"/app_${MODULE_IDENTIFIER}\">\n${files}</qresource></RCC>\n")
  # Of that format because later ones hold the time of each file, which differs between two copies.
  qt5_add_resources(resources ${list} OPTIONS --format-version 1)
  set_source_files_properties(${resources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)

  # Launchers on macOS take a dynamic library, which a MODULE is not there.
  if(APPLE)
    set(kind SHARED)
  else()
    set(kind MODULE)
  endif()
  # Xcode links nothing for a target of objects alone: the resources are its source.
  add_library(${MODULE_NAME} ${kind} $<TARGET_OBJECTS:${objects}> ${resources})
  set_target_properties(${MODULE_NAME} PROPERTIES
      AUTOMOC OFF
      CXX_VISIBILITY_PRESET hidden
      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/plugins)
  target_link_libraries(${MODULE_NAME} PRIVATE Varnholt::StandartApplication)
  # What compilers make of templates and of versions for several processors is visible else.
  if(APPLE)
    target_link_options(${MODULE_NAME} PRIVATE
        LINKER:-exported_symbol,_qt_plugin_instance,-exported_symbol,_qt_plugin_query_metadata)
  else()
    set(exports ${CMAKE_CURRENT_BINARY_DIR}/${MODULE_NAME}.exports)
    file(WRITE ${exports} "{ global: qt_plugin_instance; qt_plugin_query_metadata; local: *; };\n")
    target_link_options(${MODULE_NAME} PRIVATE LINKER:--version-script=${exports})
  endif()
endfunction()
