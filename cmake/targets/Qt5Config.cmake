# Qt 5 of a target (target.cmake): the target's libraries with the machine's headers and moc, which are
# the same for all. Qt5ConfigVersion.cmake, read before, has found qmake and the version.
function(kp410_ask_qmake variable result)
  execute_process(COMMAND ${KP410_HOST_QMAKE} -query ${variable} OUTPUT_VARIABLE answer
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${result} ${answer} PARENT_SCOPE)
endfunction()
kp410_ask_qmake(QT_INSTALL_HEADERS headers)
kp410_ask_qmake(QT_HOST_BINS tools)

if(NOT TARGET Qt5::moc)
  add_executable(Qt5::moc IMPORTED)
  set_target_properties(Qt5::moc PROPERTIES IMPORTED_LOCATION ${tools}/moc)
endif()
string(REGEX MATCH "^[0-9]+" Qt5Core_VERSION_MAJOR ${Qt5_VERSION}) # asked for by AUTOMOC
foreach(component ${Qt5_FIND_COMPONENTS})
  set(library ${KP410_TARGET_LIBRARIES}/libQt5${component}.so.5)
  if(NOT EXISTS ${library})
    set(Qt5_FOUND FALSE)
    set(Qt5_NOT_FOUND_MESSAGE "${library} is not there: scripts/target-root.sh unpacks it.")
    return()
  endif()
  set(Qt5${component}_FOUND TRUE)
  if(TARGET Qt5::${component})
    continue()
  endif()
  add_library(Qt5::${component} SHARED IMPORTED)
  string(TOUPPER ${component} name)
  set_target_properties(Qt5::${component} PROPERTIES
    IMPORTED_LOCATION ${library}
    INTERFACE_INCLUDE_DIRECTORIES "${headers};${headers}/Qt${component}"
    INTERFACE_COMPILE_DEFINITIONS "QT_${name}_LIB;$<$<NOT:$<CONFIG:Debug>>:QT_NO_DEBUG>"
    INTERFACE_COMPILE_OPTIONS -fPIC # as Qt itself was built
    INTERFACE_QT_MAJOR_VERSION ${Qt5Core_VERSION_MAJOR})
endforeach()
if(TARGET Qt5::Test)
  set_property(TARGET Qt5::Test PROPERTY INTERFACE_LINK_LIBRARIES Qt5::Core)
endif()
