// Texts with escapes, in single quotes, or to be refused. They are taken in two passes: the first
// finds where the text ends and whether it holds anything but plain characters, the second, where
// that is so, measures what the escapes make of it. Then the block is allocated in its exact size
// and filled.
#include "json/text.h"

#include <stdint.h>

#include "internal/readable.h"
#include "securec/memory.h"

#if defined(__SSE2__) && !PLX_READS_ARE_CHECKED
#define PLX_JSON_SSE2
#include <emmintrin.h>
#endif

namespace plx::json {

#ifdef PLX_JSON_SSE2

// Sixteen characters at a step. Aligned vectors lie within a page, so what they show before and
// behind the text may be looked at.
const char* find_end_of_long(const char* p) {
  const __m128i quotes = _mm_set1_epi8('"'), backslashes = _mm_set1_epi8('\\');
  const __m128i last_control = _mm_set1_epi8(0x1F);
  const auto ends_at = [&](const char* aligned) {
    const __m128i text = _mm_load_si128(reinterpret_cast<const __m128i*>(aligned));
    const __m128i specials =
        _mm_or_si128(_mm_cmpeq_epi8(text, quotes), _mm_cmpeq_epi8(text, backslashes));
    const __m128i controls = _mm_cmpeq_epi8(_mm_min_epu8(text, last_control), text);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(specials, controls)));
  };
  const size_t offset = reinterpret_cast<uintptr_t>(p) % 16;
  unsigned ends = ends_at(p - offset) >> offset;
  if (ends == 0) {
    for (p += 16 - offset; (ends = ends_at(p)) == 0;) p += 16;
  }
  return p + __builtin_ctz(ends);
}

#else

const char* find_end_of_long(const char* p) { return find_any(p, kEndsPlain); }

#endif

namespace {

// A text as it stands in the input.
struct RawText {
  const char* first;
  const char* last;  // one past the end
  bool is_plain;     // no escape and no control byte: to be copied as it is
};

// Finds the string that the quote at `*cursor` opens, and moves the cursor past its closing quote.
// False, with the cursor where it was, when it has no end; false as well when nothing follows it.
bool scan_quoted(const char** cursor, RawText* out) {
  const char quote = **cursor;
  const unsigned stops = kBackslash | kControl | (quote == '"' ? kDoubleQuote : kSingleQuote);
  const char* p = *cursor + 1;
  out->first = p;
  out->is_plain = true;
  for (;;) {
    p = find_any(p, stops);
    if (*p == quote) break;
    out->is_plain = false;
    if (*p == '\\') ++p;
    if (*p++ == '\0') return false;
  }
  out->last = p++;
  *cursor = p;
  // Callers depend on it: a quoted string cannot be the last thing in the input.
  return *p != '\0';
}

bool scan_token(const char** cursor, RawText* out) {
  out->first = *cursor;
  const char* p = find_any(*cursor, kEndsToken | kControl | kBackslash);
  out->is_plain = is_any(*p, kEndsToken);
  out->last = *cursor = find_any(p, kEndsToken);
  return out->first != out->last;
}

// Takes the unescaped text in pieces: counts it and, where there is a block, stores it. A NUL ends
// the text; what comes later is dropped.
class TextSink {
 public:
  TextSink(char* out, size_t out_size) : out_(out), out_size_(out_size) {}

  void append(const char* bytes, size_t count) {
    if (ended_) return;
    if (out_ != nullptr) {
      securec::copy_memory(out_ + length_, out_size_ - length_, bytes, count);
    }
    length_ += count;
  }
  void end() { ended_ = true; }
  size_t length() const { return length_; }

 private:
  char* out_;
  size_t out_size_;
  size_t length_ = 0;
  bool ended_ = false;
};

// Appends one 16-bit unit as UTF-8. The halves of a surrogate pair come out as three bytes each:
// callers depend on it.
void append_unit(unsigned unit, TextSink* sink) {
  const auto byte = [](unsigned value) { return static_cast<char>(value); };
  if (unit == 0) {
    sink->end();
  } else if (unit < 0x80) {
    const char bytes[] = {byte(unit)};
    sink->append(bytes, sizeof bytes);
  } else if (unit < 0x800) {
    const char bytes[] = {byte(0xC0 | unit >> 6), byte(0x80 | (unit & 0x3F))};
    sink->append(bytes, sizeof bytes);
  } else {
    const char bytes[] = {byte(0xE0 | unit >> 12), byte(0x80 | (unit >> 6 & 0x3F)),
                          byte(0x80 | (unit & 0x3F))};
    sink->append(bytes, sizeof bytes);
  }
}

// What stands for a one-letter escape, or 0.
char simple_escape(char letter) {
  switch (letter) {
    case '"':
    case '\'':
    case '/':
    case '\\':
      return letter;
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      return '\0';
  }
}

// Appends the escape whose backslash stands before `p` and returns where it ends, or null where it
// is none.
const char* append_escape(const char* p, const char* last, TextSink* sink) {
  if (p == last) return nullptr;
  if (*p != 'u') {
    const char c = simple_escape(*p++);
    if (c == '\0') return nullptr;
    sink->append(&c, 1);
    return p;
  }
  ++p;
  unsigned unit = 0;  // a text that ends too early is followed by a byte that is no digit
  for (int i = 0; i < 4; ++i) {
    const int digit = hex_digit(*p++);
    if (digit < 0) return nullptr;
    unit = unit << 4 | static_cast<unsigned>(digit);
  }
  append_unit(unit, sink);
  return p;
}

constexpr size_t kRejected = SIZE_MAX;

// Unescapes to `out`, which holds `out_size` bytes, or only measures where it is null. Returns the
// length of the result, or kRejected for a bad escape or a control byte anywhere.
size_t unescape(const RawText& raw, char* out, size_t out_size) {
  TextSink sink(out, out_size);
  for (const char* p = raw.first;;) {
    const char* run = p;
    while (p != raw.last && !is_any(*p, kBackslash | kControl)) ++p;
    sink.append(run, static_cast<size_t>(p - run));
    if (p == raw.last) return sink.length();
    if (*p != '\\') return kRejected;
    p = append_escape(p + 1, raw.last, &sink);
    if (p == nullptr) return kRejected;
  }
}

// The text in a block of its own; `out_rejected` tells a bad escape or a control byte from short
// memory.
Text make_text(const RawText& raw, bool* out_rejected) {
  *out_rejected = false;
  if (raw.is_plain) return copy_plain_text(raw.first, raw.last);
  const size_t length = unescape(raw, nullptr, 0);
  *out_rejected = length == kRejected;
  if (*out_rejected) return {};
  char* data = static_cast<char*>(allocate_block(length + 1));
  if (data == nullptr) return {};
  unescape(raw, data, length + 1);
  data[length] = '\0';
  return {data, length};
}

}  // namespace

Text read_unusual_text(const char** cursor) {
  RawText raw;
  bool rejected;
  if (is_any(**cursor, kDoubleQuote | kSingleQuote) && scan_quoted(cursor, &raw)) {
    const Text text = make_text(raw, &rejected);
    if (!rejected) return text;
  }
  // Also behind the closing quote of a string that was rejected: callers depend on it.
  return scan_token(cursor, &raw) ? make_text(raw, &rejected) : Text{};
}

}  // namespace plx::json
