# wideseek: the command line and the phone screen.

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tools/wideseek/*.cpp")
if(sources AND TARGET Wideseek AND TARGET wideseek_host)
  find_package(CLI11 REQUIRED)
  pkg_check_modules(ncursesw REQUIRED IMPORTED_TARGET ncursesw)

  add_executable(wideseek ${sources})
  target_link_libraries(wideseek PRIVATE wideseek_settings Wideseek wideseek_host CLI11::CLI11
                                              nlohmann_json::nlohmann_json PkgConfig::ncursesw)
endif()
