# The Debian packages: scripts/build-packages.sh makes them. The version is that of the changelog.
set(packaging ${CMAKE_CURRENT_LIST_DIR}/packaging)
file(STRINGS ${packaging}/changelog changes LIMIT_COUNT 1)
if(NOT changes MATCHES "^([a-z0-9-]+) \\(([0-9.]+)\\)" OR
   NOT CMAKE_MATCH_2 VERSION_EQUAL PROJECT_VERSION)
  message(FATAL_ERROR "cmake/packaging/changelog must begin with version ${PROJECT_VERSION}.")
endif()
set(CPACK_DEBIAN_PACKAGE_SOURCE ${CMAKE_MATCH_1})
set(library_package libtalmor-kp410-port${PROJECT_VERSION_MAJOR})
set(same_version "(= ${PROJECT_VERSION})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_CONTACT
    "KP410 port driver maintainers <maintainers@kp410-port.example>")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${KP410_TARGET})
  string(REPLACE : ";" CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${KP410_TARGET_LIBRARY_PATH})
endif()

# COMPONENT, its package, the archive's section, what it is in a line and in full.
function(kp410_package component package section summary text)
  string(TOUPPER ${component} name)
  set(CPACK_DEBIAN_${name}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${name}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${name}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  set(doc share/doc/${package})
  kp410_compress(${packaging}/changelog ${component}-changelog changelog)
  install(FILES ${changelog} DESTINATION ${doc} RENAME changelog.gz
          COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${packaging}/copyright DESTINATION ${doc}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

kp410_package(runtime ${library_package} libs "communication driver of an operator panel"
"The driver that the runtime of an operator panel loads to exchange data with
a programmable controller: cyclic reads, one-shot reads and writes, in frames
laid out as Modbus RTU or in those of a remote node.
.
This package has the library alone.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# CPack writes a postinst and a postrm that call ldconfig, unless it is told of others. There are none:
# the trigger has ldconfig called.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${packaging}/symbols ${packaging}/triggers ${packaging}/postinst ${packaging}/postrm)

kp410_package(dev libtalmor-kp410-port-dev libdevel
"communication driver of an operator panel (development files)"
"The header that a runtime is written from, and what pkg-config and CMake
need to find it.")
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "${library_package} ${same_version}, qtbase5-dev (>= 5.15)")

kp410_package(tools kp410-tools utils "panel and controller on the command line"
"kp410-panel reads and writes the values of a programmable controller: on a
live screen, as records for other programs, or once for a script.
.
kp410-plc is such a controller, simulated, with faults on demand.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${library_package} ${same_version}") # loaded, not linked
install(DIRECTORY host/panel/examples DESTINATION share/doc/kp410-tools
        COMPONENT tools EXCLUDE_FROM_ALL)

include(CPack)
