# 32-bit x86, the fast twin of the 32-bit box: Debian's g++-12-multilib (or clang with -m32), OpenSSL
# unpacked by scripts/i386-root into build/i386-root. Programs run as they are where the kernel runs
# them, and through qemu elsewhere.
#   -DPLX_CLANG=ON      clang instead of gcc

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLX_CLANG)
if(PLX_CLANG)
  set(CMAKE_C_COMPILER clang)
  set(CMAKE_CXX_COMPILER clang++)
else()
  set(CMAKE_C_COMPILER gcc)
  set(CMAKE_CXX_COMPILER g++)
endif()

set(PLX_I386_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/i386-root)
cmake_path(ABSOLUTE_PATH PLX_I386_ROOT NORMALIZE)
set(plx_i386_libraries ${PLX_I386_ROOT}/usr/lib/i386-linux-gnu)

set(CMAKE_FIND_ROOT_PATH ${PLX_I386_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

# The kernel's headers lie with those of the machine, and are the same. Floating point is computed in
# its own width, as on the box.
set(plx_i386_flags "-m32 -msse2 -mfpmath=sse -isystem ${PLX_I386_ROOT}/usr/include/i386-linux-gnu -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_C_FLAGS_INIT "${plx_i386_flags}")
set(CMAKE_CXX_FLAGS_INIT "${plx_i386_flags}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${plx_i386_libraries}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-Wl,-rpath-link,${plx_i386_libraries}")

set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-i386;${plx_i386_libraries})
