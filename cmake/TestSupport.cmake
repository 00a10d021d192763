# GoogleTest from the system's source package, cross-built; one ctest entry, and so one process, per test.
set(KEMBA_GOOGLETEST /usr/src/googletest CACHE PATH "GoogleTest's source")
set(BUILD_GMOCK OFF CACHE INTERNAL "")
set(INSTALL_GTEST OFF CACHE INTERNAL "")
set(gtest_disable_pthreads ON CACHE INTERNAL "")
add_subdirectory(${KEMBA_GOOGLETEST} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)

# kemba_tests(NAME SOURCES ... LIBRARIES ... [PROPERTIES ...]): a test program with the program's own resources;
# PROPERTIES are of each of its tests.
function(kemba_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;PROPERTIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} kemba_resources kemba_options GTest::gtest_main)
    target_precompile_headers(${name} REUSE_FROM kemba_kit)
    # Tests run where the sources are, so that they can look at them.
    gtest_discover_tests(${name}
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        DISCOVERY_TIMEOUT 120
        PROPERTIES TIMEOUT 120 ${arg_PROPERTIES})
endfunction()
