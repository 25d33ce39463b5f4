// Size arithmetic that cannot wrap.
#ifndef PLX_SRC_INTERNAL_CHECKED_SIZE_H
#define PLX_SRC_INTERNAL_CHECKED_SIZE_H

#include <stddef.h>
#include <stdint.h>

namespace plx {

// Both return false, with `*out` untouched, when the result does not fit a size_t.
inline bool checked_add(size_t a, size_t b, size_t* out) {
  size_t sum;
  if (__builtin_add_overflow(a, b, &sum)) return false;
  *out = sum;
  return true;
}

inline bool checked_multiply(size_t a, size_t b, size_t* out) {
  size_t product;
  if (__builtin_mul_overflow(a, b, &product)) return false;
  *out = product;
  return true;
}

// For a size that goes to an allocator: a product that does not fit becomes the largest size_t,
// which every allocator refuses.
inline size_t saturating_multiply(size_t a, size_t b) {
  size_t product;
  return checked_multiply(a, b, &product) ? product : SIZE_MAX;
}

}  // namespace plx

#endif
