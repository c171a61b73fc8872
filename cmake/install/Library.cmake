# What a phone's firmware takes: the library, the headers of its callers, platform/ for whoever implements it, and how
# CMake and pkg-config find them. Everything may be moved as a whole afterwards. docs/porting.md describes its use.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(include_dir "${CMAKE_INSTALL_INCLUDEDIR}/wideseek")
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Wideseek")
set(module_dir app/Gui/Logic/Wideseek)
set(caller_headers modWideseek WideseekAction WideseekBucket WideseekCBData WideseekCfgData WideseekController WideseekData
                   WideseekFilterWalk WideseekPage WideseekRequest
                   WideseekExport OxContainer)

set_target_properties(wideseek_platform_check PROPERTIES EXPORT_NAME PlatformCheck)
foreach(library IN ITEMS Wideseek wideseek_platform_check)
  target_include_directories(${library} INTERFACE "$<INSTALL_INTERFACE:${include_dir}>")
  install(
    TARGETS ${library}
    EXPORT WideseekTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endforeach()
install(EXPORT WideseekTargets NAMESPACE Wideseek:: DESTINATION "${package_dir}")

list(TRANSFORM caller_headers PREPEND "${PROJECT_SOURCE_DIR}/${module_dir}/")
list(TRANSFORM caller_headers APPEND ".h")
install(FILES ${caller_headers} DESTINATION "${include_dir}/${module_dir}")
file(GLOB platform_headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/platform/*.h")
install(FILES ${platform_headers} DESTINATION "${include_dir}/platform")
install(FILES "${PROJECT_SOURCE_DIR}/platform_check/PlatformCheck.h" DESTINATION "${include_dir}/platform_check")

write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/WideseekConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/install/WideseekConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/package/WideseekConfig.cmake" INSTALL_DESTINATION "${package_dir}"
                              NO_SET_AND_CHECK_MACRO)
install(FILES "${PROJECT_BINARY_DIR}/package/WideseekConfig.cmake"
              "${PROJECT_BINARY_DIR}/package/WideseekConfigVersion.cmake" DESTINATION "${package_dir}")

# pkg-config knows where it found the file, hence the way from there to the prefix.
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir}"
           OUTPUT_VARIABLE way_to_prefix)
foreach(package IN ITEMS wideseek wideseek-platform-check)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/install/${package}.pc.in" "${PROJECT_BINARY_DIR}/package/${package}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/package/${package}.pc" DESTINATION "${pkgconfig_dir}")
endforeach()
