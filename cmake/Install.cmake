# What goes where: the library alone (runtime), what a runtime is built with (dev), the programs (tools).
include(CMakePackageConfigHelpers)
set(KP410_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/talmor_kp410_port)
set(KP410_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set_target_properties(talmor_kp410_port PROPERTIES EXPORT_NAME kp410_port)
target_link_libraries(talmor_kp410_port INTERFACE kp410_qt_core) # the header includes Qt's
target_compile_features(talmor_kp410_port INTERFACE cxx_std_17)
install(TARGETS talmor_kp410_port EXPORT talmor_kp410_port
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES include/talmor_kp410_port.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

if(TALMOR_QT EQUAL 5) # these name the Qt that is wanted
  install(EXPORT talmor_kp410_port NAMESPACE Talmor:: FILE talmor_kp410_port-targets.cmake
          DESTINATION ${KP410_CMAKE_DIR} COMPONENT dev)
  write_basic_package_version_file(talmor_kp410_port-config-version.cmake
                                   COMPATIBILITY SameMajorVersion)
  install(FILES cmake/packaging/talmor_kp410_port-config.cmake
                ${CMAKE_CURRENT_BINARY_DIR}/talmor_kp410_port-config-version.cmake
          DESTINATION ${KP410_CMAKE_DIR} COMPONENT dev)

  # Relative to the file itself, so that a tree that was moved, or was installed elsewhere, still holds.
  file(RELATIVE_PATH KP410_PREFIX /${KP410_PKGCONFIG_DIR} /)
  string(REGEX REPLACE "/$" "" KP410_PREFIX ${KP410_PREFIX})
  configure_file(cmake/packaging/talmor_kp410_port.pc.in talmor_kp410_port.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/talmor_kp410_port.pc
          DESTINATION ${KP410_PKGCONFIG_DIR} COMPONENT dev)
endif()

add_custom_target(packaged DEPENDS talmor_kp410_port) # all that is installed
find_program(KP410_GZIP gzip REQUIRED)
# Compresses `file` under `name`, the same bytes each time, and names the result in `result`.
function(kp410_compress file name result)
  set(compressed ${CMAKE_CURRENT_BINARY_DIR}/${name}.gz)
  add_custom_command(OUTPUT ${compressed} DEPENDS ${file} VERBATIM
                     COMMAND ${KP410_GZIP} -9nc ${file} > ${compressed})
  add_custom_target(kp410_compressed_${name} ALL DEPENDS ${compressed})
  add_dependencies(packaged kp410_compressed_${name})
  set(${result} ${compressed} PARENT_SCOPE)
endfunction()

# A program with its manual page.
function(kp410_install_tool name)
  install(TARGETS ${name} RUNTIME COMPONENT tools)
  add_dependencies(packaged ${name})
  kp410_compress(${PROJECT_SOURCE_DIR}/docs/man/${name}.1 ${name}.1 page)
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endfunction()
