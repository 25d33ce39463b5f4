#include "securec/output/transcode.h"

#include <stdint.h>

#include <algorithm>

#include "securec/keep_errno.h"

namespace plx::securec {
namespace {

constexpr size_t kFailed = static_cast<size_t>(-1);
constexpr size_t kIncomplete = static_cast<size_t>(-2);

constexpr bool is_ascii(wchar_t c) { return static_cast<uint32_t>(c) < 0x80; }
constexpr bool is_ascii(char c) { return static_cast<unsigned char>(c) < 0x80; }

// A multibyte text, one character after the other.
class MultibyteReader {
 public:
  explicit MultibyteReader(const char* text) : text_(text) {}

  bool at_end() const { return *text_ == 0; }

  // The ASCII characters that stand next, up to `max` of them.
  size_t ascii_run(size_t max) const {
    size_t count = 0;
    while (count < max && text_[count] != 0 && is_ascii(text_[count])) ++count;
    return count;
  }

  const char* skip(size_t count) {
    const char* skipped = text_;
    text_ += count;
    return skipped;
  }

  // Byte by byte, so that a character cut short by the terminator is not read past it.
  bool read(wchar_t* out) {
    size_t size;
    do {
      size = mbrtowc(out, text_++, 1, &state_);
    } while (size == kIncomplete);
    return size != kFailed && size != 0;  // GCOVR_EXCL_BR_LINE: 0 behind a change of state only
  }

 private:
  const char* text_;
  mbstate_t state_ = {};
};

}  // namespace

size_t wctomb_fresh(wchar_t c, char (&bytes)[kMaxCharacterSize]) {
  if (is_ascii(c)) {
    bytes[0] = static_cast<char>(c);
    return 1;
  }
  const KeepErrno keep;
  mbstate_t state = {};
  const size_t size = wcrtomb(bytes, c, &state);
  return size != kFailed ? size : 0;
}

bool mbtowc_fresh(unsigned char byte, wchar_t* out) {
  const KeepErrno keep;
  mbstate_t state = {};
  const char text = static_cast<char>(byte);
  const size_t size = mbrtowc(out, &text, 1, &state);
  return size != kFailed && size != kIncomplete;
}

size_t count_characters(const char* text, size_t max) {
  const KeepErrno keep;
  MultibyteReader reader(text);
  for (size_t count = 0;; ++count) {
    const size_t run = reader.ascii_run(max - count);
    reader.skip(run);
    count += run;
    wchar_t ignored;
    if (count == max || reader.at_end() || !reader.read(&ignored)) return count;
  }
}

bool write_converted(Writer<char>* out, const wchar_t* text, size_t max) {
  for (; max > 0 && *text != 0; --max, ++text) {
    char bytes[kMaxCharacterSize];
    const size_t size = wctomb_fresh(*text, bytes);
    if (size == 0 || !out->write_string(bytes, size)) return false;
  }
  return true;
}

bool write_converted(Writer<wchar_t>* out, const char* text, size_t max) {
  const KeepErrno keep;
  MultibyteReader reader(text);
  for (;; --max) {
    // One character more than there is room for says as much as the whole text.
    const size_t run = reader.ascii_run(std::min(max, out->room() + 1));
    if (!out->write_ascii(reader.skip(run), run)) return false;
    max -= run;
    if (max == 0 || reader.at_end()) return true;
    wchar_t c;
    if (!reader.read(&c) || !out->write_string(&c, 1)) return false;
  }
}

}  // namespace plx::securec
