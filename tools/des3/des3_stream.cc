// The blocks of ECB do not depend on each other, so a long input goes through in pieces of whole
// blocks. To each piece the library appends a block of its own, which counts for the last one only.
#include "des3/des3_stream.h"

#include <fmt/core.h>
#include <plx/digest.h>

#include <algorithm>
#include <vector>

#include "support/failure.h"
#include "support/file.h"
#include "support/output.h"
#include "support/stream.h"

namespace plx::tool {
namespace {

constexpr size_t kBlock = 8;

using Run = void (*)(const Des3Context*, const unsigned char*, unsigned char*, int);

class Schedule {
 public:
  explicit Schedule(const Secret& keys) {
    if (keys.size() == 2 * kBlock) {
      PLX_3des_set2keys(&context_, keys.data(), keys.data() + kBlock);
    } else {
      PLX_3des_set3keys(&context_, keys.data(), keys.data() + kBlock, keys.data() + 2 * kBlock);
    }
  }
  ~Schedule() { wipe(&context_, sizeof context_); }
  Schedule(const Schedule&) = delete;
  Schedule& operator=(const Schedule&) = delete;
  const Des3Context* get() const { return &context_; }

 private:
  Des3Context context_;
};

// Everything that the library makes of `piece`.
Secret run_piece(const Schedule& schedule, Run run, const Secret& piece) {
  Secret out((piece.size() / kBlock + 1) * kBlock);
  run(schedule.get(), piece.data(), out.data(), static_cast<int>(piece.size()));
  return out;
}

void put_front(const Secret& bytes, size_t count) {
  put({reinterpret_cast<const char*>(bytes.data()), count});
}

// Writes what all pieces but the last make, without the appended blocks, and returns all that the
// last one makes. Sets `size` to the size of the last piece.
Secret run_to_last(const std::string& source, const Schedule& schedule, Run run, size_t* size) {
  InputStream input(source);
  Secret piece(kPiece), next(kPiece);
  piece.resize(input.read(piece.data(), piece.size()));
  while (piece.size() == kPiece) {
    next.resize(kPiece);
    next.resize(input.read(next.data(), next.size()));
    if (next.empty()) break;
    put_front(run_piece(schedule, run, piece), piece.size());
    piece.swap(next);
  }
  *size = piece.size();
  return run_piece(schedule, run, piece);
}

// The number of bytes 1 to 7 at the end that are padding; 0 when they are none.
size_t padding_of(const Secret& text, size_t size) {
  const size_t count = size == 0 ? 0 : text[size - 1];
  if (count < 1 || count >= kBlock) return 0;
  for (size_t i = size - count; i < size; ++i) {
    if (text[i] != count) return 0;
  }
  return count;
}

bool ends_in_zero_block(const Secret& text, size_t size) {
  const auto end = text.begin() + static_cast<long>(size);
  return size >= kBlock && std::all_of(end - kBlock, end, [](unsigned char c) { return c == 0; });
}

// How much of the last piece is text.
size_t text_size(const Secret& text, size_t size, Des3End end) {
  const size_t padding = end == Des3End::kZeroBlock ? 0 : padding_of(text, size);
  if (padding != 0) return size - padding;
  if (end != Des3End::kPadding && ends_in_zero_block(text, size)) return size - kBlock;
  const char* wanted = end == Des3End::kPadding     ? "padding"
                       : end == Des3End::kZeroBlock ? "a block of zeros"
                                                    : "padding or a block of zeros";
  refuse(fmt::format("the text does not end in {}: other keys, or the text was changed", wanted),
         "--end as-is prints it as it comes");
}

}  // namespace

void des3_encrypt(const std::string& source, const Secret& keys) {
  const Schedule schedule(keys);
  size_t size;
  const Secret last = run_to_last(source, schedule, PLX_3des_encrypt, &size);
  put_front(last, last.size());
}

void des3_decrypt(const std::string& source, const Secret& keys, Des3End end) {
  const Schedule schedule(keys);
  size_t size;
  const Secret last = run_to_last(source, schedule, PLX_3des_decrypt, &size);
  if (end == Des3End::kAsItComes) {
    put_front(last, last.size());
    return;
  }
  if (size % kBlock != 0 || size == 0) {
    refuse(
        fmt::format("{}: the cipher text is no whole number of blocks of 8 bytes", name_of(source)),
        "it may have been cut");
  }
  put_front(last, text_size(last, size, end));
}

}  // namespace plx::tool
