# Tests of the programs: of their parts in C++, of whole processes in Python. The cases of
# tst_NAME.cpp and of tst_NAME.py are lines of tst_NAME.txt.
include_guard(GLOBAL)
find_package(Qt5 5.15 REQUIRED COMPONENTS Test)

# The distribution's own interpreter: its packages are not those of another first in PATH.
find_program(PYTHON3 python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)

add_library(kp410_cases STATIC ${CMAKE_CURRENT_LIST_DIR}/cases.cpp)
set_target_properties(kp410_cases PROPERTIES AUTOMOC ON)
target_include_directories(kp410_cases PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(kp410_cases PUBLIC Qt5::Test PRIVATE kp410_warnings)

# tst_FOLDER_NAME.cpp, named FOLDER/NAME in ctest; what follows are compile definitions.
function(kp410_part_test folder name)
  set(test tst_${folder}_${name})
  add_executable(${test} ${test}.cpp)
  set_target_properties(${test} PROPERTIES AUTOMOC ON)
  target_include_directories(${test} PRIVATE ${PROJECT_SOURCE_DIR}/host)
  target_link_libraries(${test} PRIVATE kp410_${folder}_core kp410_cases kp410_warnings Qt5::Test)
  target_compile_definitions(${test} PRIVATE
    CASES="${CMAKE_CURRENT_SOURCE_DIR}/${test}.txt" ${ARGN})
  add_test(NAME ${folder}/${name} COMMAND ${test})
  set_tests_properties(${folder}/${name} PROPERTIES TIMEOUT 180)
endfunction()

# A script and its arguments, with more variables of its environment.
function(kp410_program_test name environment)
  add_test(NAME ${name} COMMAND ${PYTHON3} -B ${ARGN})
  set_tests_properties(${name} PROPERTIES TIMEOUT 180 ENVIRONMENT
    "PYTHONPATH=${PROJECT_SOURCE_DIR}/tests/support;KP410_PANEL=$<TARGET_FILE:kp410-panel>;\
KP410_PLC=$<TARGET_FILE:kp410-plc>;KP410_DRIVER=$<TARGET_SONAME_FILE:talmor_kp410_port>;\
${environment}")
endfunction()
