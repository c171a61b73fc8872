# libWideseek.so: the search module. It is linked with pugixml alone: what it calls of the phone stays undefined and is
# resolved by whatever loads it.

find_package(pugixml REQUIRED)

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/app/Gui/Logic/Wideseek/*.cpp")
# The objects are a target of their own so that the tests can reach the classes that the library hides.
add_library(wideseek_objects OBJECT ${sources})
target_compile_options(wideseek_objects PRIVATE -fvisibility=hidden -fvisibility-inlines-hidden)
target_link_libraries(wideseek_objects PRIVATE wideseek_settings PUBLIC pugixml::pugixml)
target_include_directories(wideseek_objects PUBLIC "${PROJECT_SOURCE_DIR}")

add_library(Wideseek SHARED)
target_link_libraries(Wideseek PRIVATE wideseek_settings wideseek_objects)
target_include_directories(Wideseek INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
target_link_options(Wideseek PRIVATE "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/libWideseek.map")
set_property(TARGET Wideseek APPEND PROPERTY LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/libWideseek.map")
set_target_properties(Wideseek PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                          LINKER_LANGUAGE CXX)
add_custom_command(
  TARGET Wideseek
  POST_BUILD
  COMMAND "${CMAKE_COMMAND}" "-DSTRIP=${CMAKE_STRIP}" "-DLIBRARY=$<TARGET_FILE:Wideseek>" -P
          "${PROJECT_SOURCE_DIR}/cmake/PrintStrippedSize.cmake"
  VERBATIM)
