# wideseek_tests: the unit tests, and the checks that run the tool as a user does.

file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/*_test.cpp")
file(GLOB support CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/support/*.cpp")
if(sources)
  find_package(GTest REQUIRED)
  include(GoogleTest)

  # The module's objects instead of its library: its classes are hidden in the library.
  add_executable(wideseek_tests ${sources} ${support})
  target_link_libraries(wideseek_tests PRIVATE wideseek_settings GTest::gtest GTest::gmock GTest::gtest_main)
  foreach(library IN ITEMS wideseek_objects wideseek_host)
    if(TARGET ${library})
      target_link_libraries(wideseek_tests PRIVATE ${library})
    endif()
  endforeach()
  target_link_libraries(wideseek_tests PRIVATE nlohmann_json::nlohmann_json PkgConfig::utf8proc PkgConfig::ldap)
  target_compile_definitions(wideseek_tests PRIVATE WIDESEEK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  gtest_discover_tests(wideseek_tests DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 300)
endif()

file(GLOB checks CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/*_check.sh" "${PROJECT_SOURCE_DIR}/tests/*_check.py")
if(TARGET wideseek)
  foreach(check IN LISTS checks)
    cmake_path(GET check STEM name)
    add_test(NAME ${name} COMMAND "${check}")
    set_tests_properties(
      ${name}
      PROPERTIES ENVIRONMENT "WIDESEEK_TOOL=$<TARGET_FILE:wideseek>;WIDESEEK_BUILD=${PROJECT_BINARY_DIR}"
                 WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}" TIMEOUT 300 COST 20) # the longest ones first
  endforeach()
endif()
