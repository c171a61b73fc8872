# wideseek_bench: the benchmarks.

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/*.cpp")
if(sources AND TARGET wideseek_objects AND TARGET wideseek_host)
  find_package(benchmark QUIET)
  find_package(SQLite3 QUIET)
  if(benchmark_FOUND AND SQLite3_FOUND)
    add_executable(wideseek_bench ${sources})
    target_link_libraries(wideseek_bench PRIVATE wideseek_settings wideseek_objects wideseek_host
                                                 nlohmann_json::nlohmann_json benchmark::benchmark SQLite::SQLite3)
  else()
    message(STATUS "wideseek_bench is left out: it needs Google Benchmark and SQLite "
                   "(scripts/install-deps.sh bench installs them)")
  endif()
endif()
