# libwideseek_platform_check.a: whether a phone keeps the rules of platform/. A phone that is built without exceptions or
# type information links with it.

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/platform_check/*.cpp")
find_package(Threads REQUIRED)
add_library(wideseek_platform_check STATIC ${sources})
target_compile_options(wideseek_platform_check PRIVATE -fno-exceptions -fno-rtti)
target_include_directories(wideseek_platform_check INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
target_link_libraries(wideseek_platform_check PRIVATE "$<BUILD_INTERFACE:wideseek_settings>" PUBLIC Threads::Threads)
