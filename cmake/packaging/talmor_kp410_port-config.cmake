# Talmor::kp410_port: the header of the KP410 port driver, its library, and the Qt that both need.
include(CMakeFindDependencyMacro)
find_dependency(Qt5 5.15 COMPONENTS Core)
include(${CMAKE_CURRENT_LIST_DIR}/talmor_kp410_port-targets.cmake)
