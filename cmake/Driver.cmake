include(cmake/Hardening.cmake)

# The driver: one set of objects, linked into the library that a runtime loads and into the tests,
# which need the internal functions that the library does not export.
add_library(kp410_core OBJECT
  check/Func_Check_registers.cpp
  check/Func_Check_reply.cpp
  check/Func_Check_sums.cpp
  check/address.cpp
  data/Func_DealData.cpp
  data/Func_GetOrSetData_read.cpp
  data/Func_GetOrSetData_store.cpp
  data/Func_GetOrSetData_write.cpp
  data/image.cpp
  data/write_pieces.cpp
  driver/Communication_Protocol.cpp
  driver/cycle.cpp
  driver/dispatch.cpp
  driver/finish.cpp
  driver/layout.cpp
  driver/log.cpp
  driver/scheduler.cpp
  driver/setup.cpp
  encode/Func_Read.cpp
  encode/Func_Remote.cpp
  encode/Func_Write.cpp
  encode/frame.cpp
  encode/queue.cpp
  lists/Func_Initi_address.cpp
  lists/Func_Initi_add.cpp
  lists/Func_Initi_blocks.cpp
  lists/Func_Initi_regroup.cpp
  lists/Func_Initi_sort.cpp
  lists/pieces.cpp)
target_include_directories(kp410_core PUBLIC ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})
target_link_libraries(kp410_core PUBLIC kp410_qt_core PRIVATE kp410_warnings kp410_hardening)
set_target_properties(kp410_core PROPERTIES
  POSITION_INDEPENDENT_CODE ON
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON)

add_library(talmor_kp410_port SHARED)
target_link_libraries(talmor_kp410_port PRIVATE kp410_core kp410_warnings kp410_hardening kp410_qt_core)
target_include_directories(talmor_kp410_port INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>)
set_target_properties(talmor_kp410_port PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE CXX
  SKIP_BUILD_RPATH ON # built as it will be installed: Qt is the runtime's
  LINK_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/exports.map)
# Optimised across files where it is built for use: a twentieth of each turn, a tenth of each call of
# a screen, and of the size. The tests link the same objects as they are, so that these carry both
# forms, which g++ alone can write.
include(CheckIPOSupported)
check_ipo_supported(RESULT has_ipo OUTPUT why_not LANGUAGES CXX)
if(has_ipo AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(kp410_core PRIVATE
    $<$<CONFIG:Release,RelWithDebInfo>:-ffat-lto-objects>)
  set_target_properties(kp410_core talmor_kp410_port PROPERTIES
    INTERPROCEDURAL_OPTIMIZATION_RELEASE ON
    INTERPROCEDURAL_OPTIMIZATION_RELWITHDEBINFO ON)
endif()
# -Bsymbolic: the runtime may have objects called LB or LW of its own; ours must stay ours.
target_link_options(talmor_kp410_port PRIVATE
  -Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/exports.map
  -Wl,-Bsymbolic)
