# wideseek: the command line and the phone screen; and its manual page and completions, which are made from the command
# line's definition.

include(GNUInstallDirs)

find_package(CLI11 REQUIRED)
pkg_check_modules(ncursesw REQUIRED IMPORTED_TARGET ncursesw)

# The tool finds the sample phone from where it lies itself: as installed, and as built.
file(RELATIVE_PATH installed_sample "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_DATADIR}/wideseek/sample")
file(RELATIVE_PATH built_sample "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}/sample")

file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tools/wideseek/*.cpp")
list(REMOVE_ITEM sources "${PROJECT_SOURCE_DIR}/tools/wideseek/Main.cpp")
add_library(wideseek_tool OBJECT ${sources})
target_compile_definitions(
  wideseek_tool
  PRIVATE WIDESEEK_INSTALLED_SAMPLE="${installed_sample}"
          WIDESEEK_BUILT_SAMPLE="${built_sample}"
          WIDESEEK_VERSION="${PROJECT_VERSION}")
target_link_libraries(
  wideseek_tool PUBLIC wideseek_settings Wideseek wideseek_host CLI11::CLI11 pugixml::pugixml
                       nlohmann_json::nlohmann_json PkgConfig::utf8proc PkgConfig::ncursesw)

add_executable(wideseek "${PROJECT_SOURCE_DIR}/tools/wideseek/Main.cpp")
target_link_libraries(wideseek PRIVATE wideseek_tool)

# What was built has to run here; where it does not, there is neither manual page nor completion.
if(NOT CMAKE_CROSSCOMPILING OR CMAKE_CROSSCOMPILING_EMULATOR)
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tools/manual/*.cpp")
  add_executable(wideseek_manual ${sources})
  target_link_libraries(wideseek_manual PRIVATE wideseek_tool)

  set(WIDESEEK_MANUAL_DIR "${PROJECT_BINARY_DIR}/manual")
  file(MAKE_DIRECTORY "${WIDESEEK_MANUAL_DIR}")
  set(pages wideseek.1 wideseek _wideseek)
  list(TRANSFORM pages PREPEND "${WIDESEEK_MANUAL_DIR}/")
  add_custom_command(
    OUTPUT ${pages}
    COMMAND wideseek_manual "${WIDESEEK_MANUAL_DIR}"
    COMMENT "Writing the manual page and the completions"
    VERBATIM)
  add_custom_target(wideseek_pages ALL DEPENDS ${pages})
endif()
