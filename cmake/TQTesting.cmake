include(GoogleTest)

# tq_add_test(<name> SOURCES <files...> [LIBS <targets...>])
# One GoogleTest executable with the shared test support, its cases registered with CTest one by one.
function(tq_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} TQ_TestSupport GTest::gmock GTest::gtest_main Threads::Threads)
  target_compile_definitions(${name} PRIVATE
    TQ_SOURCE_DIR="${PROJECT_SOURCE_DIR}" TQ_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()
