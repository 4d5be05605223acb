# The Qt of the driver and its tests, under names that are the same for every version. The panel has
# Qt 4.8: name its qmake, which runs here, with -DTALMOR_QT=4 -DQT_QMAKE_EXECUTABLE=...
set(TALMOR_QT 5 CACHE STRING "Major version of Qt that the runtime brings: 4 or 5")
set_property(CACHE TALMOR_QT PROPERTY STRINGS 4 5)
if(TALMOR_QT EQUAL 4)
  find_package(Qt4 4.8 REQUIRED COMPONENTS QtCore QtTest)
  # What its macros and its moc write cannot be mended here, and it says register.
  target_compile_options(kp410_warnings INTERFACE -Wno-error -Wno-register)
  add_library(kp410_qt_core ALIAS Qt4::QtCore)
  add_library(kp410_qt_test ALIAS Qt4::QtTest)
elseif(TALMOR_QT EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Core Test)
  add_library(kp410_qt_core ALIAS Qt5::Core)
  add_library(kp410_qt_test ALIAS Qt5::Test)
else()
  message(FATAL_ERROR "TALMOR_QT must be 4 or 5")
endif()
