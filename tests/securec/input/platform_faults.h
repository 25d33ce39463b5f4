// What the platform answers on demand: files whose position cannot be told or set, another
// decimal point, and bytes that are characters. streams_test.cc puts these in place by the linker's
// --wrap.
#ifndef PLX_TESTS_SECUREC_INPUT_PLATFORM_FAULTS_H
#define PLX_TESTS_SECUREC_INPUT_PLATFORM_FAULTS_H

namespace plx_test {

inline bool ftell_fails = false;
inline int fseeks_to_fail = 0;
inline bool bytes_are_latin = false;
inline const char* decimal_point = nullptr;  // in place of the locale's

}  // namespace plx_test

#endif
