# wideseek_tests: the unit tests. wideseek_memory_tests: those that let allocations fail, which takes a program with an
# operator new of its own. And the checks that run the tool as a user does.

find_package(GTest REQUIRED)
include(GoogleTest)

# The module's objects instead of its library: its classes are hidden in the library.
file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/support/*.cpp")
add_library(wideseek_test_support OBJECT ${sources})
target_link_libraries(wideseek_test_support PUBLIC wideseek_settings wideseek_objects wideseek_host GTest::gmock)
target_compile_definitions(wideseek_test_support PUBLIC WIDESEEK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/search/*_test.cpp"
     "${PROJECT_SOURCE_DIR}/tests/host/*_test.cpp" "${PROJECT_SOURCE_DIR}/tests/tool/*_test.cpp")
# The tool's own parts that are tested without the tool.
foreach(part IN ITEMS KeyLine PhoneModel screens/RowColumns)
  list(APPEND sources "${PROJECT_SOURCE_DIR}/tools/wideseek/phone/${part}.cpp")
endforeach()
add_executable(wideseek_tests ${sources})
target_link_libraries(wideseek_tests PRIVATE nlohmann_json::nlohmann_json PkgConfig::utf8proc PkgConfig::ldap)
set(programs wideseek_tests)

# ThreadSanitizer has an operator new that cannot be replaced, and these tests have one thread.
if(NOT "thread" IN_LIST WIDESEEK_SANITIZE)
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/memory/*.cpp")
  add_executable(wideseek_memory_tests ${sources})
  list(APPEND programs wideseek_memory_tests)
endif()

foreach(tests IN LISTS programs)
  target_link_libraries(${tests} PRIVATE wideseek_test_support wideseek_objects GTest::gtest_main)
  set(environment)
  if(tests STREQUAL "wideseek_memory_tests" AND IS_DIRECTORY /dev/shm)
    set(environment ENVIRONMENT TMPDIR=/dev/shm) # thousands of phones, each with a folder, would wait for a disk
  endif()
  gtest_discover_tests(${tests} DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 300 ${environment})
endforeach()

# All that the tests need but the tool, for builds in which nobody runs the tool.
add_custom_target(wideseek_test_programs DEPENDS ${programs})

file(GLOB checks CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/checks/*_check.sh"
     "${PROJECT_SOURCE_DIR}/tests/checks/*_check.py")
foreach(check IN LISTS checks)
  cmake_path(GET check STEM name)
  add_test(NAME ${name} COMMAND "${check}")
  set_tests_properties(
    ${name}
    PROPERTIES ENVIRONMENT "WIDESEEK_TOOL=$<TARGET_FILE:wideseek>;WIDESEEK_BUILD=${PROJECT_BINARY_DIR}"
               WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" TIMEOUT 300 COST 20) # the longest ones first
endforeach()

# The workstation phone under the platform check, with faults on demand. Its definitions stand before the phone's own.
file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/platform/*.cpp")
add_executable(wideseek_platform_tests ${sources})
target_compile_definitions(wideseek_platform_tests PRIVATE WIDESEEK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_link_libraries(wideseek_platform_tests PRIVATE wideseek_settings wideseek_platform_check wideseek_host
                                                      ${CMAKE_DL_LIBS})
