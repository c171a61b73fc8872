# One executable per tests/fuzz/NAME_fuzz.cpp, with everything it runs instrumented.

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "WIDESEEK_FUZZ needs Clang: configure with -DCMAKE_CXX_COMPILER=clang++ or the preset 'fuzz'")
endif()

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/fuzz/*_fuzz.cpp")
file(GLOB support CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/support/*.cpp")
foreach(source IN LISTS sources)
  cmake_path(GET source STEM name)
  add_executable(${name} ${source} ${support})
  target_link_libraries(${name} PRIVATE wideseek_settings nlohmann_json::nlohmann_json)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  foreach(library IN ITEMS wideseek_objects wideseek_host)
    if(TARGET ${library})
      target_link_libraries(${name} PRIVATE ${library})
    endif()
  endforeach()
endforeach()
