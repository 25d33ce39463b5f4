# Test programs: GoogleTest, found on this machine or, for another architecture, built from
# Debian's sources of it.
include(GoogleTest)

if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()

# What the tests share: guarded buffers, and the allocator that fails on demand.
add_library(plx_test_support STATIC ${PROJECT_SOURCE_DIR}/tests/support/allocation.cc)
target_include_directories(plx_test_support PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(plx_test_support PUBLIC GTest::gtest PRIVATE plx_warnings)
foreach(function malloc calloc realloc free strdup)
  target_link_options(plx_test_support INTERFACE -Wl,--wrap=${function})
endforeach()

# plx_add_test(name source...) makes a test program that links the library's objects, internals
# included.
function(plx_add_test name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE plx_objects plx_test_support GTest::gtest_main
                                        plx_warnings plx_quick)
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300)
endfunction()

# plx_add_host_test(name source...) makes one that links the shared library, as a host does.
function(plx_add_host_test name)
  add_executable(${name} ${ARGN})
  target_compile_definitions(${name} PRIVATE PLX_NO_CALLER_CHECKS)
  target_link_libraries(${name} PRIVATE plxutility GTest::gtest_main plx_warnings plx_quick)
  # The debugging twin is tried in front of each of them.
  set_property(GLOBAL APPEND PROPERTY PLX_HOST_TESTS ${name})
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300)
endfunction()
