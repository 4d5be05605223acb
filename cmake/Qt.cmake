# The Qt of the driver and its tests, under names of ours.
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Test)
add_library(kp410_qt_core ALIAS Qt5::Core)
add_library(kp410_qt_test ALIAS Qt5::Test)
