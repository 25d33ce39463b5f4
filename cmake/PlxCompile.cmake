# Compile settings shared by every target of the project.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# Warnings for our own code, in both languages.
add_library(plx_warnings INTERFACE)
target_compile_options(plx_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wcast-qual -Wundef -Wvla -Wimplicit-fallthrough
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  # GoogleTest's typed suites leave a variadic argument empty.
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-gnu-zero-variadic-macro-arguments>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>
  $<$<BOOL:${PLX_WERROR}>:-Werror>)

# What need not be fast, tests and the reading of command lines, is compiled quickly where the
# library is optimised.
add_library(plx_quick INTERFACE)
target_compile_options(plx_quick INTERFACE $<$<CONFIG:RelWithDebInfo>:-O1 -g1>)

# What the library alone is compiled with: nothing thrown, no type information, nothing exported
# by accident, and the hardening that its callers' process deserves.
add_library(plx_library_options INTERFACE)
target_compile_options(plx_library_options INTERFACE
  -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden -fno-exceptions -fno-rtti
                            -fno-threadsafe-statics>
  -fno-semantic-interposition -ffunction-sections -fdata-sections
  -fstack-protector-strong -fstack-clash-protection)
if(CMAKE_BUILD_TYPE MATCHES "Rel" AND NOT PLX_SANITIZE)
  # No path of the building machine stays in what is released, so that two builds of one commit
  # are the same bytes. Of two mappings that match the compilers take the last: the build folder
  # usually lies inside the source folder.
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                      -ffile-prefix-map=${PROJECT_BINARY_DIR}=./build)
  # The tool and the debugging twin are installed as well, and as hardened.
  set(PLX_FORTIFY _FORTIFY_SOURCE=2)
  target_compile_definitions(plx_library_options INTERFACE ${PLX_FORTIFY})
  add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()
# clang has stack-clash protection for x86 alone of our machines.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND NOT CMAKE_SYSTEM_PROCESSOR MATCHES "86")
  target_compile_options(plx_library_options INTERFACE -Wno-unused-command-line-argument)
endif()

# Flags for the library and not its tests: scripts/verify tries every optimisation level with them.
set(PLX_LIBRARY_FLAGS "" CACHE STRING "More flags to compile the library with")
target_compile_options(plx_library_options INTERFACE ${PLX_LIBRARY_FLAGS})

# Sanitizers apply to everything that is linked together, tests included.
set(PLX_SANITIZE "" CACHE STRING "Sanitizers to compile with, for instance address,undefined")
if(PLX_SANITIZE)
  add_compile_options(-fsanitize=${PLX_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # Both need type information, which the library does not carry.
    add_compile_options(-fno-sanitize=vptr,function)
  else()
    # Behind the checks gcc takes branches for possible that are not, and warns of their bounds.
    add_compile_options(-fno-sanitize=vptr -Wno-array-bounds -Wno-stringop-overflow
                        -Wno-stringop-overread -Wno-maybe-uninitialized)
  endif()
  add_link_options(-fsanitize=${PLX_SANITIZE})
endif()

# The fuzz targets steer by the library's coverage.
if(PLX_BUILD_FUZZERS)
  target_compile_options(plx_library_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Coverage is that of the library, whatever runs it.
option(PLX_COVERAGE "Count the lines and branches that are run" OFF)
if(PLX_COVERAGE)
  target_compile_options(plx_library_options INTERFACE --coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
