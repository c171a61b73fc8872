# wideseek: the command line and the phone screen.

find_package(CLI11 REQUIRED)
pkg_check_modules(ncursesw REQUIRED IMPORTED_TARGET ncursesw)

file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tools/wideseek/*.cpp")
add_executable(wideseek ${sources})
target_link_libraries(wideseek PRIVATE wideseek_settings Wideseek wideseek_host CLI11::CLI11 pugixml::pugixml
                                       nlohmann_json::nlohmann_json PkgConfig::utf8proc PkgConfig::ncursesw)
# The tool finds the sample phone of the source tree that it was built from, as long as that is there.
target_compile_definitions(wideseek PRIVATE WIDESEEK_SAMPLE_DIR="${PROJECT_SOURCE_DIR}/sample"
                                            WIDESEEK_VERSION="${PROJECT_VERSION}")
