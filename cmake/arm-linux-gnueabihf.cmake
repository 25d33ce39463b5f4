# 32-bit ARM with Debian's cross compiler. The ARM libraries that Debian's cross packages do not
# carry (OpenSSL, fmt) are unpacked by scripts/arm-root into build/arm-root; programs run through
# qemu.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLX_CLANG)
if(PLX_CLANG) # -DPLX_CLANG=ON: clang instead of gcc
  set(CMAKE_C_COMPILER clang)
  set(CMAKE_CXX_COMPILER clang++)
  set(CMAKE_C_COMPILER_TARGET arm-linux-gnueabihf)
  set(CMAKE_CXX_COMPILER_TARGET arm-linux-gnueabihf)
else()
  set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
  set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
endif()

set(PLX_ARM_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm-root)
cmake_path(ABSOLUTE_PATH PLX_ARM_ROOT NORMALIZE)
set(plx_arm_libraries ${PLX_ARM_ROOT}/usr/lib/arm-linux-gnueabihf)
set(plx_arm_headers ${PLX_ARM_ROOT}/usr/include/arm-linux-gnueabihf)

set(CMAKE_FIND_ROOT_PATH ${PLX_ARM_ROOT} /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

# Debian splits OpenSSL's headers by architecture.
set(CMAKE_C_FLAGS_INIT "-isystem ${plx_arm_headers} -Wno-psabi")
set(CMAKE_CXX_FLAGS_INIT "-isystem ${plx_arm_headers} -Wno-psabi")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${plx_arm_libraries}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-Wl,-rpath-link,${plx_arm_libraries}")

# Tests choose the processor by QEMU_CPU; it starts as one without the newer instructions.
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm-static;-L;/usr/arm-linux-gnueabihf;-E;LD_LIBRARY_PATH=${plx_arm_libraries})
