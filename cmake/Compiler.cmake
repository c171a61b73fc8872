# The language, the warnings and the sanitizers, the same for every target.

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
    -Werror
    # Nobody replaces a function of our shared libraries, so one may be inlined where it is called in its own file.
    -fno-semantic-interposition
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
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
