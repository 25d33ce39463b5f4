// The Opt variants: small blocks are filled and copied without a call into the C library, by words
// where the addresses allow it, else byte by byte, so that no unaligned wide access is made.
#include <utility>

#include "securec/memory.h"

namespace plx::securec {
namespace {

constexpr size_t kMaxSmallFill = 32;
constexpr size_t kMaxSmallCopy = 64;
constexpr size_t kWordAlignment = 8;

alignas(kWordAlignment) constexpr unsigned char kZeroes[kMaxSmallFill] = {};
alignas(kWordAlignment) constexpr unsigned char kOnes[kMaxSmallFill] = {
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

bool is_word_aligned(const void* p) { return reinterpret_cast<uintptr_t>(p) % kWordAlignment == 0; }

// A block of a size known at compile time: words, by assumed alignment, or single bytes.
struct Words {
  template <size_t kSize>
  static void copy(unsigned char* dst, const unsigned char* src) {
    constexpr size_t kAlignment = kSize < kWordAlignment ? kSize : kWordAlignment;
    memcpy(__builtin_assume_aligned(dst, kAlignment), __builtin_assume_aligned(src, kAlignment),
           kSize);
  }
};

struct Bytes {
  template <size_t kSize>
  static void copy(unsigned char* dst, const unsigned char* src) {
    copy_each(dst, src, std::make_index_sequence<kSize>());
  }

 private:
  template <size_t... kIndex>
  static void copy_each(unsigned char* dst, const unsigned char* src,
                        std::index_sequence<kIndex...>) {
    ((dst[kIndex] = src[kIndex]), ...);
  }
};

// Copies `count` bytes as the sum of its powers of two, largest first: each piece is straight-line
// code, and the later pieces keep the alignment of their own size.
template <typename Unit, size_t kPiece>
void copy_pieces(unsigned char* dst, const unsigned char* src, size_t count) {
  if (count & kPiece) {
    Unit::template copy<kPiece>(dst, src);
    dst += kPiece;
    src += kPiece;
  }
  if constexpr (kPiece > 1) copy_pieces<Unit, kPiece / 2>(dst, src, count);
}

// Volatile, or compilers make words of these stores, and on ARM calls of memset.
template <size_t kPiece>
void fill_pieces(volatile unsigned char* dst, unsigned char c, size_t count) {
  if (count & kPiece) {
    for (size_t i = 0; i < kPiece; ++i) dst[i] = c;
    dst += kPiece;
  }
  if constexpr (kPiece > 1) fill_pieces<kPiece / 2>(dst, c, count);
}

template <bool kTestsSign>
struct SmallBlocks {
  static constexpr bool kTestsSignOnSuccess = kTestsSign;

  static errno_t fill(void* dst, int c, size_t count) {
    if (count > kMaxSmallFill) {
      return PlatformBlocks::fill(dst, c, count);
    }
    auto* bytes = static_cast<unsigned char*>(dst);
    if (is_word_aligned(dst) && (c == 0 || c == 0xFF)) {
      copy_pieces<Words, kMaxSmallFill>(bytes, c == 0 ? kZeroes : kOnes, count);
    } else {
      fill_pieces<kMaxSmallFill>(bytes, static_cast<unsigned char>(c), count);
    }
    return EOK;
  }

  static errno_t copy(void* dst, const void* src, size_t count) {
    if (count > kMaxSmallCopy) {
      return PlatformBlocks::copy(dst, src, count);
    }
    auto* to = static_cast<unsigned char*>(dst);
    const auto* from = static_cast<const unsigned char*>(src);
    if (is_word_aligned(dst) && is_word_aligned(src)) {
      copy_pieces<Words, kMaxSmallCopy>(to, from, count);
    } else {
      copy_pieces<Bytes, kMaxSmallCopy>(to, from, count);
    }
    return EOK;
  }
};

}  // namespace
}  // namespace plx::securec

using namespace plx::securec;

extern "C" {

errno_t memset_sOptAsm(void* dest, size_t destMax, int c, size_t count) {
  return fill_memory<SmallBlocks<true>>(dest, destMax, c, count);
}

errno_t memcpy_sOptAsm(void* dest, size_t destMax, const void* src, size_t count) {
  return copy_memory<SmallBlocks<true>>(dest, destMax, src, count);
}

// The Tc variants write under a capacity above the limit as well; callers depend on it.
errno_t memset_sOptTc(void* dest, size_t destMax, int c, size_t count) {
  return fill_memory<SmallBlocks<false>>(dest, destMax, c, count);
}

errno_t memcpy_sOptTc(void* dest, size_t destMax, const void* src, size_t count) {
  return copy_memory<SmallBlocks<false>>(dest, destMax, src, count);
}

}  // extern "C"
