# The benchmarks: wideseek_bench (bench/search_bench.cpp, bench/search) measures single workloads of the library and its
# sources, wideseek_session_bench (bench/session_bench.cpp, bench/session) whole typing sessions, wideseek_load_bench
# (bench/load_bench.cpp) reading contacts. They share the rest of bench, of which wideseek_phone_bench
# (bench/phone_bench.cpp) takes what an emulated phone needs.

file(GLOB shared CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/*.cpp")
list(FILTER shared EXCLUDE REGEX "_bench\\.cpp$")
add_executable(
  wideseek_phone_bench
  "${PROJECT_SOURCE_DIR}/bench/phone_bench.cpp" "${PROJECT_SOURCE_DIR}/bench/search/ThisThread.cpp"
  "${PROJECT_SOURCE_DIR}/bench/session/Heap.cpp" ${shared})
target_link_libraries(wideseek_phone_bench PRIVATE wideseek_settings wideseek_objects wideseek_host)

add_executable(wideseek_load_bench "${PROJECT_SOURCE_DIR}/bench/load_bench.cpp" ${shared})
target_link_libraries(wideseek_load_bench PRIVATE wideseek_settings wideseek_host)

file(GLOB search CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/search/*.cpp")
file(GLOB session CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/session/*.cpp")
find_package(benchmark QUIET)
find_package(SQLite3 QUIET)
if(benchmark_FOUND AND SQLite3_FOUND)
  add_executable(wideseek_bench "${PROJECT_SOURCE_DIR}/bench/search_bench.cpp" ${search} ${shared})
  target_link_libraries(wideseek_bench PRIVATE wideseek_settings wideseek_objects wideseek_host benchmark::benchmark)

  add_executable(wideseek_session_bench "${PROJECT_SOURCE_DIR}/bench/session_bench.cpp" ${session} ${shared})
  target_link_libraries(
    wideseek_session_bench PRIVATE wideseek_settings Wideseek wideseek_host CLI11::CLI11
                                   nlohmann_json::nlohmann_json SQLite::SQLite3)
else()
  message(STATUS "The benchmarks are left out: they need Google Benchmark and SQLite "
                 "(scripts/install-deps.sh bench installs them)")
endif()
