# What a Release build with tests would prove, without building everything a
# second time: the translation units in which GCC's optimiser has reported a
# false warning (a string copy "overlapping" itself, -Wrestrict, at -O3) are
# compiled again at -O3 with warnings as errors, whatever this build's own type
# and sanitizers. Add a file here when another such warning is fixed.
set(varnel_optimised_sources
  ${CMAKE_CURRENT_SOURCE_DIR}/standalone/FileEntitlementsManagerTest.cpp)

add_library(varnel_optimised_warnings OBJECT EXCLUDE_FROM_ALL ${varnel_optimised_sources})
# Without the directory's sanitizer flags: they change what the optimiser sees.
set_property(TARGET varnel_optimised_warnings PROPERTY COMPILE_OPTIONS "")
target_link_libraries(varnel_optimised_warnings PRIVATE varnel_test_support Varnel::standalone GTest::gmock)
target_compile_options(varnel_optimised_warnings PRIVATE -O3 -DNDEBUG -Wall -Wextra -Wpedantic -Wshadow
                                                         -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_test(NAME build.release_warnings_are_errors
  COMMAND ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --target varnel_optimised_warnings)
set_tests_properties(build.release_warnings_are_errors PROPERTIES TIMEOUT 600)
