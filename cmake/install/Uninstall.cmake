# The target "uninstall" takes away what the last "cmake --install" of this build put where it is, and the folders that
# had to be made for it. Included before everything that is installed, so that the missing folders are noted first.

install(SCRIPT "${CMAKE_CURRENT_LIST_DIR}/NoteFolders.cmake")
add_custom_target(
  uninstall
  COMMAND "${CMAKE_COMMAND}" -P "${CMAKE_CURRENT_LIST_DIR}/RemoveInstalled.cmake"
  WORKING_DIRECTORY "${PROJECT_BINARY_DIR}"
  COMMENT "Taking away what was installed"
  VERBATIM)
