# Builds for an Android box with the real NDK:
#   ANDROID_NDK_ROOT=/path/to/ndk cmake -B build/android \
#     -DCMAKE_TOOLCHAIN_FILE=cmake/android.cmake -DPLX_MINIMUM_OPENSSL= \
#     -DOPENSSL_INCLUDE_DIR=... -DOPENSSL_CRYPTO_LIBRARY=...
# The variables are the documented ones of the NDK's own toolchain file, which does the work. The
# NDK has no libcrypto: name the headers and library of the platform's build.

set(ANDROID_ABI armeabi-v7a CACHE STRING "armeabi-v7a, the product, or arm64-v8a")
set(ANDROID_PLATFORM android-21 CACHE STRING "The oldest Android that the library has to load on")
# StringArray, CCipher and the two functions with a std::string want caller and library on one C++
# runtime, so it is the shared one.
set(ANDROID_STL c++_shared CACHE STRING "The C++ runtime that the boxes carry")
set(ANDROID_ARM_MODE thumb CACHE STRING "The smaller of the two instruction encodings")

if(DEFINED ENV{ANDROID_NDK_ROOT})
  set(plx_ndk $ENV{ANDROID_NDK_ROOT})
elseif(DEFINED ENV{ANDROID_NDK_HOME})
  set(plx_ndk $ENV{ANDROID_NDK_HOME})
else()
  message(FATAL_ERROR "Set ANDROID_NDK_ROOT to the folder of the Android NDK")
endif()
include(${plx_ndk}/build/cmake/android.toolchain.cmake)
