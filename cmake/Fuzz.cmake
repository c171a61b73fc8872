# One executable per tests/fuzz/NAME_fuzz.cpp. Everything that it runs is instrumented, so that the fuzzer sees which
# branches of the module and the host an input reaches.

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "WIDESEEK_FUZZ needs Clang: configure with --preset fuzz or -DCMAKE_CXX_COMPILER=clang++")
endif()

# What the tests stand on reports to GoogleTest.
find_package(GTest REQUIRED)

file(GLOB support CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/support/*.cpp")
add_library(wideseek_fuzz_support OBJECT ${support})
target_link_libraries(wideseek_fuzz_support PUBLIC wideseek_settings GTest::gtest)
foreach(instrumented IN ITEMS wideseek_objects wideseek_host wideseek_fuzz_support)
  target_compile_options(${instrumented} PRIVATE -fsanitize=fuzzer-no-link)
endforeach()

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/fuzz/*_fuzz.cpp")
foreach(source IN LISTS sources)
  cmake_path(GET source STEM name)
  add_executable(${name} ${source})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE wideseek_fuzz_support wideseek_objects wideseek_host)
endforeach()
