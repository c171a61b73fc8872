# Runs when an installation begins: notes in the build folder which folders it will have to make. Where it puts things,
# the script of CMake that runs this one says.

cmake_path(GET CMAKE_PARENT_LIST_FILE PARENT_PATH build)
file(STRINGS "${CMAKE_PARENT_LIST_FILE}" destinations REGEX "DESTINATION \"\\\${CMAKE_INSTALL_PREFIX}/")
foreach(line IN LISTS destinations)
  string(REGEX REPLACE ".*DESTINATION \"\\\${CMAKE_INSTALL_PREFIX}/([^\"]*)\".*" "${CMAKE_INSTALL_PREFIX}/\\1" folder "${line}")
  while(NOT EXISTS "$ENV{DESTDIR}${folder}")
    list(APPEND made "${folder}")
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endforeach()
list(REMOVE_DUPLICATES made)
list(JOIN made "\n" lines)
file(APPEND "${build}/install_folders.txt" "${lines}\n")
