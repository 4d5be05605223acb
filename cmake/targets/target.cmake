# Toolchain of a 32-bit target, KP410_TARGET (armhf or i386): Debian's cross compiler, the machine's own
# headers and moc, and the libraries that scripts/target-root.sh has unpacked in KP410_TARGET_ROOT.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KP410_TARGET KP410_TARGET_ROOT)
set(CMAKE_SYSTEM_NAME Linux)

if(KP410_TARGET STREQUAL "armhf")
  set(CMAKE_SYSTEM_PROCESSOR armv7l)
  set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
  set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # notes on what differs from code of g++ 7.0 and older
  set(libraries arm-linux-gnueabihf)
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${KP410_TARGET_ROOT})
elseif(KP410_TARGET STREQUAL "i386")
  set(CMAKE_SYSTEM_PROCESSOR i686)
  set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
  set(libraries i386-linux-gnu)
else()
  message(FATAL_ERROR "KP410_TARGET must be armhf or i386")
endif()

set(KP410_TARGET_LIBRARIES ${KP410_TARGET_ROOT}/usr/lib/${libraries})
set(KP410_TARGET_LIBRARY_PATH ${KP410_TARGET_ROOT}/lib/${libraries}:${KP410_TARGET_LIBRARIES})
set(CMAKE_SHARED_LINKER_FLAGS_INIT "\"-Wl,-rpath-link,${KP410_TARGET_LIBRARY_PATH}\"")
set(CMAKE_EXE_LINKER_FLAGS_INIT "\"-Wl,-rpath-link,${KP410_TARGET_LIBRARY_PATH}\"")
# The machine's processor runs i386: a program only has to name its own loader and libraries. The old
# kind of rpath holds for the libraries of a library as well.
if(KP410_TARGET STREQUAL "i386")
  string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT
         " \"-Wl,--dynamic-linker,${KP410_TARGET_ROOT}/lib/ld-linux.so.2\""
         " \"-Wl,--disable-new-dtags,-rpath,${KP410_TARGET_LIBRARY_PATH}\"")
endif()

# Of the terminal the programs need what their users have: the libraries, which have no other names.
set(CURSES_NCURSES_LIBRARY ${KP410_TARGET_ROOT}/lib/${libraries}/libncursesw.so.6 CACHE FILEPATH "")
set(CURSES_EXTRA_LIBRARY ${KP410_TARGET_ROOT}/lib/${libraries}/libtinfo.so.6 CACHE FILEPATH "")

set(modbus_library ${KP410_TARGET_LIBRARIES}/libmodbus.so.5 CACHE FILEPATH "") # of the bench

set(Qt5_DIR ${CMAKE_CURRENT_LIST_DIR}) # where Qt5Config.cmake of the target is
