# One executable per tests/fuzz/NAME_fuzz.cpp. Everything that it runs is instrumented, so that the fuzzer sees which
# branches of the module and the host an input reaches. It stands on what the tests stand on, which comes first
# (cmake/Tests.cmake).

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "WIDESEEK_FUZZ needs Clang: configure with --preset asan or -DCMAKE_CXX_COMPILER=clang++")
endif()
if(NOT WIDESEEK_TESTS OR NOT "address" IN_LIST WIDESEEK_SANITIZE)
  message(FATAL_ERROR "WIDESEEK_FUZZ needs WIDESEEK_TESTS=ON and WIDESEEK_SANITIZE=address: the tests are instrumented "
                      "as well, and find what they call for it in AddressSanitizer")
endif()

foreach(instrumented IN ITEMS wideseek_objects wideseek_host wideseek_test_support)
  target_compile_options(${instrumented} PRIVATE -fsanitize=fuzzer-no-link)
endforeach()

add_custom_target(wideseek_fuzz_targets)
file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/fuzz/*_fuzz.cpp")
foreach(source IN LISTS sources)
  cmake_path(GET source STEM name)
  add_executable(${name} ${source})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE wideseek_test_support wideseek_objects)
  add_dependencies(wideseek_fuzz_targets ${name})
endforeach()
