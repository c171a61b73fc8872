# libwideseek_host.so: the phone on a workstation.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)
pkg_check_modules(inih REQUIRED IMPORTED_TARGET inih INIReader)
pkg_check_modules(ldap REQUIRED IMPORTED_TARGET ldap lber)
pkg_check_modules(curl REQUIRED IMPORTED_TARGET libcurl)
find_path(CSV_INCLUDE_DIR csv.h REQUIRED)
find_library(CSV_LIBRARY csv REQUIRED)
mark_as_advanced(CSV_INCLUDE_DIR CSV_LIBRARY)

file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/host/*.cpp")
add_library(wideseek_host SHARED ${sources})
# It is loaded with the program, so a thread's own variables need no function to be found.
target_compile_options(wideseek_host PRIVATE -ftls-model=initial-exec)
target_include_directories(wideseek_host SYSTEM PRIVATE "${CSV_INCLUDE_DIR}")
target_include_directories(wideseek_host INTERFACE "${PROJECT_SOURCE_DIR}")
target_link_libraries(
  wideseek_host
  PRIVATE wideseek_settings PkgConfig::utf8proc PkgConfig::inih PkgConfig::ldap PkgConfig::curl "${CSV_LIBRARY}"
          nlohmann_json::nlohmann_json pugixml::pugixml
  PUBLIC Threads::Threads)
if(NOT WIDESEEK_SANITIZE)
  # The sanitizers' runtime is in the executable, so their calls are undefined here.
  target_link_options(wideseek_host PRIVATE LINKER:--no-undefined)
endif()
