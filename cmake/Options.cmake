# What a builder may choose.

option(WIDESEEK_HOST "Build the workstation phone and all that runs on it, not the library alone" ON)
option(WIDESEEK_TESTS "Build the tests" ON)
option(WIDESEEK_BENCH "Build the benchmarks where Google Benchmark is installed" ON)
option(WIDESEEK_FUZZ "Build the fuzz targets (Clang only)" OFF)
option(WIDESEEK_WARNINGS_ARE_ERRORS "Take no warning of the compiler; OFF for compilers that warn of what is right" ON)
set(WIDESEEK_SANITIZE "" CACHE STRING "Sanitizers for everything that is built, e.g. address;undefined or thread")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Debug, Release or RelWithDebInfo" FORCE)
endif()
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
