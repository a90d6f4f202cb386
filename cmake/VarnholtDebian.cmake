# Run by CPack on what it has installed for Debian packages: adds what each of them has to hold and
# compresses the manual pages.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

# The same time for each package of a commit.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(shared ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/../LICENSE licence)
  file(WRITE ${shared}/doc/${package}/copyright "${licence}")
  file(WRITE ${shared}/doc/${package}/changelog
      "${package} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
      "  * See README.md and CHANGELOG.md of the package varnholt.\n\n"
      " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  file(GLOB pages ${shared}/man/man1/*.1)
  execute_process(
      COMMAND gzip -9n ${shared}/doc/${package}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
