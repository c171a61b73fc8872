# The target "reference" makes the API reference from the headers that are installed, as HTML in the build folder's
# reference/html; what was made is installed with them. Whatever doxygen cannot show as it is meant is an error.

find_program(WIDESEEK_DOXYGEN doxygen)
mark_as_advanced(WIDESEEK_DOXYGEN)

set(reference_dir "${PROJECT_BINARY_DIR}/reference")
set(reference_source_dir "${CMAKE_CURRENT_LIST_DIR}")
list(JOIN caller_headers "\" \"" reference_headers)
list(JOIN platform_headers "\" \"" reference_platform_headers)
configure_file("${reference_source_dir}/Doxyfile.in" "${PROJECT_BINARY_DIR}/package/Doxyfile" @ONLY)
if(WIDESEEK_DOXYGEN)
  add_custom_command(
    OUTPUT "${reference_dir}/html/index.html"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${reference_dir}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${reference_dir}"
    COMMAND "${reference_source_dir}/make_reference.py" "${WIDESEEK_DOXYGEN}" "${PROJECT_BINARY_DIR}/package/Doxyfile"
    DEPENDS ${caller_headers} ${platform_headers} "${PROJECT_BINARY_DIR}/package/Doxyfile"
            "${reference_source_dir}/doc_comments.py" "${reference_source_dir}/make_reference.py"
            "${reference_source_dir}/Begin.md"
    COMMENT "Making the API reference"
    VERBATIM)
  add_custom_target(reference DEPENDS "${reference_dir}/html/index.html")
else()
  add_custom_target(
    reference
    COMMAND "${CMAKE_COMMAND}" -E echo "The API reference needs doxygen: scripts/install-deps.sh check installs it"
    COMMAND "${CMAKE_COMMAND}" -E false
    VERBATIM)
endif()
install(
  DIRECTORY "${reference_dir}/html"
  DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  OPTIONAL)
