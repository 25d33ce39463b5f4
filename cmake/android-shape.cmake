# A library of Android's shape without the NDK: clang and lld for Android's target against Debian's
# cross headers. It is there to be read, not run: what the device's loader demands shows in the
# file whichever C library stood by. scripts/verify builds it.
#   -DPLX_SHAPE=arm (the product) or arm64
#   -DPLX_SHAPE_ROOT=...  ARM libraries and headers, as scripts/arm-root unpacks them

set(PLX_SHAPE arm CACHE STRING "arm or arm64")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLX_SHAPE PLX_SHAPE_ROOT)
set(CMAKE_SYSTEM_NAME Linux)
if(PLX_SHAPE STREQUAL "arm")
  set(CMAKE_SYSTEM_PROCESSOR armv7-a)
  set(plx_target armv7a-linux-androideabi21)
  set(plx_triplet arm-linux-gnueabihf)
  set(plx_loader ld-linux-armhf.so.3)
else()
  set(CMAKE_SYSTEM_PROCESSOR aarch64)
  set(plx_target aarch64-linux-android21)
  set(plx_triplet aarch64-linux-gnu)
  set(plx_loader ld-linux-aarch64.so.1)
endif()
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET ${plx_target})
endforeach()
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# Android's floating-point calling convention is the soft one, for which glibc's header of stubs is
# missing from Debian's hard-float headers. An empty one of our own stands in.
set(plx_shape_headers ${CMAKE_BINARY_DIR}/shape-headers)
file(WRITE ${plx_shape_headers}/gnu/stubs-soft.h "")

set(plx_cross /usr/${plx_triplet})
string(JOIN " " plx_c_headers -isystem ${plx_shape_headers} -isystem ${plx_cross}/include)
string(JOIN " " plx_cxx_headers
       --start-no-unused-arguments -nostdinc++ --end-no-unused-arguments -isystem ${plx_cross}/include/c++/12
       -isystem ${plx_cross}/include/c++/12/${plx_triplet})
set(CMAKE_C_FLAGS_INIT "${plx_c_headers}")
set(CMAKE_CXX_FLAGS_INIT "${plx_cxx_headers} ${plx_c_headers}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld -nostdlib -L${plx_cross}/lib")
# The stack protector's guard stands in Debian's loader; Android has it in its C library.
set(CMAKE_CXX_STANDARD_LIBRARIES "-l:${plx_loader} -l:libstdc++.so.6 -l:libm.so.6 -l:libgcc_s.so.1 -l:libc.so.6")
