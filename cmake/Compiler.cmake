# The language, the warnings, the sanitizers and the hardening, the same for every target.

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)
include(CheckPIESupported)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(WIDESEEK_CCACHE ccache)
  mark_as_advanced(WIDESEEK_CCACHE)
  if(WIDESEEK_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${WIDESEEK_CCACHE}")
  endif()
endif()

# What every target of this repository is compiled with.
add_library(wideseek_settings INTERFACE)
target_include_directories(wideseek_settings INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(
  wideseek_settings
  INTERFACE
    -Wall
    -Wextra
    -Wpedantic
    -Wshadow
    -Wconversion
    -Wsign-conversion
    -Wnon-virtual-dtor
    -Woverloaded-virtual
    -Wold-style-cast
    -Wcast-qual
    -Wformat=2
    -Wimplicit-fallthrough
    -Wunused
    $<$<BOOL:${WIDESEEK_WARNINGS_ARE_ERRORS}>:-Werror>
    # Nobody replaces a function of our shared libraries, so one may be inlined where it is called in its own file.
    -fno-semantic-interposition
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
    $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond>
    $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op>
    # GCC 12 sees overlapping copies in the standard library's "text" + std::string when it optimises.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

if(WIDESEEK_SANITIZE)
  list(JOIN WIDESEEK_SANITIZE "," sanitizers)
  target_compile_options(wideseek_settings INTERFACE -fsanitize=${sanitizers} -fno-omit-frame-pointer
                                                     -fno-sanitize-recover=all)
  target_link_options(wideseek_settings INTERFACE -fsanitize=${sanitizers})
  if("undefined" IN_LIST WIDESEEK_SANITIZE)
    # It asks for the type information of classes, which the library hides of those that callers do not derive from.
    target_compile_options(wideseek_settings INTERFACE -fno-sanitize=vptr)
  endif()
endif()

# What keeps a memory error from becoming more than a crash, as far as compiler and linker have it. Builds with sanitizers
# and fuzz targets are not shipped, and find such errors themselves. scripts/checks/hardening.sh looks for the outcome in
# the binaries.
if(NOT WIDESEEK_SANITIZE AND NOT WIDESEEK_FUZZ)
  check_pie_supported(LANGUAGES CXX)
  # -fno-plt: where everything is bound at the start, calls need no detour by way of the binder. It pays for the others.
  foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection -fno-plt)
    string(MAKE_C_IDENTIFIER "WIDESEEK_HAS${flag}" has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
      target_compile_options(wideseek_settings INTERFACE ${flag})
    endif()
  endforeach()

  check_linker_flag(CXX "LINKER:-z,relro,-z,now" WIDESEEK_HAS_RELRO)
  if(WIDESEEK_HAS_RELRO)
    target_link_options(wideseek_settings INTERFACE "LINKER:-z,relro,-z,now")
  endif()

  # It works on optimised code alone, and a compiler that has a level of its own predefined warns of another one.
  set(CMAKE_REQUIRED_FLAGS "-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
  check_cxx_source_compiles("
    #include <cstdlib>
    #if __USE_FORTIFY_LEVEL != 3
    #error \"the C library or the compiler knows lower levels only\"
    #endif
    int main() {}" WIDESEEK_HAS_FORTIFY_3)
  unset(CMAKE_REQUIRED_FLAGS)
  target_compile_options(
    wideseek_settings INTERFACE $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE
                                -D_FORTIFY_SOURCE=$<IF:$<BOOL:${WIDESEEK_HAS_FORTIFY_3}>,3,2>>)
endif()
