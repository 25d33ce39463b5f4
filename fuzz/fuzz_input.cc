// Formatted input, from strings, files, pipes and standard input of both widths. The first byte
// chooses the stream that is compared, and the shape of the rest:
//   odd   the bytes up to a NUL are the format, whatever they are; the rest is the text
//   even  a format of four directives at most is built from the next bytes, with destinations that
//         end at inaccessible memory; the rest is the text
// What must hold: nothing is written past a destination; all sources and both widths give the
// same result, the same destinations and the same unread rest; the C library's sscanf gives the
// same where both follow the same rules.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "securec/input/scan.h"

using namespace plx_test;

namespace {

constexpr size_t kLongestText = 998;

class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size)
      : at_(reinterpret_cast<const char*>(data)), end_(at_ + size) {}

  size_t below(size_t count) { return at_ == end_ ? 0 : static_cast<uint8_t>(*at_++) % count; }
  template <size_t kCount>
  const char* choose(const char* const (&values)[kCount]) {
    return values[below(kCount)];
  }
  // The bytes up to a NUL, and the NUL.
  std::string text() {
    const char* begin = at_;
    const size_t length = strnlen(at_, static_cast<size_t>(end_ - at_));
    at_ += length + (at_ + length == end_ ? 0 : 1);
    return {begin, std::min(length, kLongestText)};
  }

 private:
  const char* at_;
  const char* end_;
};

bool is_ascii(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

void require_equal(const char* property, const std::string& format, const std::string& text,
                   const std::string& a, const std::string& b) {
  if (a == b) return;
  fprintf(stderr, "%s: \"%s\" by \"%s\": \"%s\" and \"%s\"\n", property, text.c_str(),
          format.c_str(), a.c_str(), b.c_str());
  abort();
}

// ---- Sources
// -------------------------------------------------------------------------------------

enum class Stream { kFile, kPipe, kStandardInput };
const char* const kStreamNames[] = {"a file", "a pipe", "standard input"};

FILE* stream_of(Stream kind, const std::string& bytes) {
  static const int memory = memfd_create("input", 0);
  int ends[2] = {memory, memory};
  lseek(memory, 0, SEEK_SET);
  if (kind == Stream::kPipe ? pipe(ends) != 0 : ftruncate(memory, 0) != 0) abort();
  const ssize_t written = write(ends[1], bytes.data(), bytes.size());
  if (written != static_cast<ssize_t>(bytes.size())) abort();
  if (kind == Stream::kPipe) {
    close(ends[1]);
    return fdopen(ends[0], "r");
  }
  lseek(memory, 0, SEEK_SET);
  return fdopen(dup(memory), "r");
}

// One scan, its arguments left to `call(function, source..., format)`.
template <typename Char, typename Call>
std::string by_string(const std::string& text, const std::string& format, Call call) {
  const Char* const first = guarded<Char>(text + '\0');
  return call(Scan<Char>::kString, first, guarded<Char>(format + '\0', 1));
}

// The result, and behind it what is left in the stream.
template <typename Char, typename Call>
std::string by_stream(Stream kind, const std::string& text, const std::string& format, Call call) {
  const bool is_standard = kind == Stream::kStandardInput;
  StandardInput input(stream_of(kind, is_standard ? text : bytes_of<Char>(text)));
  const auto wanted = of_width<Char>(format);
  std::string all = is_standard ? call(Scan<Char>::kStandardInput, wanted.c_str())
                                : call(Scan<Char>::kFile, stdin, wanted.c_str());
  all += ", left: ";
  if (is_standard && sizeof(Char) > 1) {
    for (wint_t c; (c = fgetwc(stdin)) != WEOF;) all += static_cast<char>(c);
    return all;
  }
  const std::string rest = read_all(stdin);
  const size_t unit = is_standard ? 1 : sizeof(Char);
  for (size_t i = 0; i < rest.size(); i += unit) all += rest[i];
  return all;
}

template <typename Call>
std::string check_sources(Stream kind, const std::string& text, const std::string& format,
                          Call call) {
  const std::string string = by_string<char>(text, format, call);
  const bool has_mark = text.compare(0, 2, "\xEF\xBB") == 0;
  if (text.empty() || has_mark) return string;  // they differ, and on purpose
  const std::string stream = by_stream<char>(kind, text, format, call);
  const char* const name = kStreamNames[static_cast<int>(kind)];
  require_equal(name, format, text, string, stream.substr(0, string.size()));
  if (is_ascii(text) && is_ascii(format)) {
    require_equal("the widths", format, text, string, by_string<wchar_t>(text, format, call));
    require_equal(name, format, text, stream, by_stream<wchar_t>(kind, text, format, call));
  }
  return string;
}

// ---- Any format
// ----------------------------------------------------------------------------------

// Arguments that fit every format: each is a pointer to memory, and at the same time a size that
// the memory has. So the memory lies at a low address.
class AnyArguments {
 public:
  static constexpr uintptr_t kAddress = 0x10000;
  static constexpr size_t kSize = kAddress * sizeof(wchar_t);

  static bool are_possible() {
    static void* const memory =
        mmap(reinterpret_cast<void*>(kAddress), kSize, PROT_READ | PROT_WRITE,
             MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    return memory == reinterpret_cast<void*>(kAddress);
  }

  template <typename Function, typename... First>
  static std::string call(Function function, First... first) {
    void* const a = reinterpret_cast<void*>(kAddress);
    memset(a, 0, sizeof(wchar_t) * (kLongestText + 1));
    const int result = function(first..., a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a,
                                a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a, a);
    return std::to_string(result) + " " + std::string(static_cast<char*>(a), 64);
  }
};

void scan_by_any_format(Stream kind, Bytes bytes) {
  // Two arguments for each '%' at the most.
  const std::string format = bytes.text();
  if (!AnyArguments::are_possible() || std::count(format.begin(), format.end(), '%') > 20) return;
  check_sources(kind, bytes.text(), format, [](auto... all) { return AnyArguments::call(all...); });
}

// ---- Formats that are built
// ----------------------------------------------------------------------

const char* const kWidths[] = {"", "", "", "", "1", "2", "3", "9", "0", "04", "998"};
const char* const kModifiers[] = {"",  "",  "",  "l", "l", "h", "hh", "ll",  "j",   "z",
                                  "t", "L", "q", "w", "I", "F", "N",  "I64", "I32", "lh"};
const char* const kSets[] = {"a-z", "^ ", "0-9", "]a",    "^]a", "z-a",
                             "-a",  "a-", "^^",  "a-c-e", "%d-x"};
const char* const kOthers[] = {" ", "\n", ",", "a", "%%"};

struct BuiltFormat {
  std::string format, destinations, peer_destinations;
  bool has_peer = true;  // the C library follows the same rules
  bool has_float = false, has_prefix = false;

  void add_directive(Bytes* bytes);
  void add_text(Bytes* bytes, char letter, const std::string& modifier, bool suppressed);
  bool agrees_on(const std::string& text) const;
};

// The destination of a number.
std::string destination_of(char letter, const std::string& modifier) {
  const bool is_longest = modifier == "ll" || modifier == "j" || modifier == "L" || modifier == "q";
  const bool is_long = modifier == "l" || modifier == "z" || modifier == "t";
  if (strchr("efgEG", letter) != nullptr) return is_longest ? "D" : is_long ? "d" : "f";
  if (letter == 'p' || modifier == "I") return "ip";
  if (is_longest || modifier == "I64") return "i8";
  return modifier == "hh" ? "i1" : modifier == "h" ? "i2" : is_long ? "il" : "i4";
}

void BuiltFormat::add_text(Bytes* bytes, char letter, const std::string& modifier,
                           bool suppressed) {
  const bool is_wide = modifier == "l" || modifier == "ll" || modifier == "w" ||
                       ((letter == 'C' || letter == 'S') && modifier[0] != 'h');
  const bool is_plain = modifier.empty() && !is_wide;
  const size_t count = bytes->below(10);
  const bool has_plenty = count == 9 && is_plain;
  has_peer = has_peer && is_plain && (suppressed || has_plenty);
  if (suppressed) return;
  const std::string kind = is_wide ? "w" : "s";
  // A size of 0 writes one character all the same.
  destinations += kind + (has_plenty ? "999" : count == 0 ? "1=0" : std::to_string(count)) + ' ';
  peer_destinations += "t999 ";
}

void BuiltFormat::add_directive(Bytes* bytes) {
  const char letter = "_diuoxXpnefgEGcs[[CSDU"[bytes->below(22)];
  if (letter == '_') {
    const char* other = bytes->choose(kOthers);
    format += other;
    has_peer = has_peer && *other != '%';  // the C library skips white space for it
    return;
  }
  const size_t shape = bytes->below(256);
  const bool suppressed = shape % 4 == 0;
  const bool is_integer = strchr("diuoxXDUpn", letter) != nullptr;
  std::string modifier = bytes->choose(kModifiers);
  // "I" is a modifier only before these. "lh" is the plain width of text, of numbers the int's.
  if (modifier == "I" && strchr("diuoxX", letter) == nullptr) modifier = "";
  format += (suppressed ? "%*" : "%") + std::string(kWidths[shape / 4 % 11]) + modifier + letter;
  if (letter == '[') format += std::string(bytes->choose(kSets)) + ']';
  if (strchr("cs[CS", letter) != nullptr) return add_text(bytes, letter, modifier, suppressed);
  const std::string destination = destination_of(letter, modifier);
  if (!suppressed) destinations += destination + ' ', peer_destinations += destination + ' ';
  has_float = has_float || !is_integer;
  has_prefix = has_prefix || strchr("ixXp", letter) != nullptr;
  static const std::string kShared[] = {"", "h", "hh", "l", "ll", "j", "z", "t", "L", "q"};
  const bool is_shared =
      std::find(std::begin(kShared), std::end(kShared), modifier) != std::end(kShared);
  // The C library gathers an int in a long, and rounds once to a float. It has no 'D' and 'U', and
  // stores by "%*n".
  has_peer = has_peer && is_shared && (is_integer ? sizeof(long) == 8 : modifier == "l") &&
             letter != 'D' && letter != 'U' && !(suppressed && letter == 'n');
}

bool BuiltFormat::agrees_on(const std::string& text) const {
  // It takes a bare "0x" for a number, and reads "nan", "inf" and hexadecimal floats.
  const bool has_letters = text.find_first_of("xXiInN") != std::string::npos;
  return has_peer && !text.empty() && !(has_letters && (has_float || has_prefix));
}

void scan_by_built_format(Stream kind, size_t directives, Bytes bytes) {
  BuiltFormat built;
  for (size_t i = 0; i < directives; ++i) built.add_directive(&bytes);
  const std::string text = bytes.text();
  const std::string ours = check_sources(kind, text, built.format, [&](auto... all) {
    return Destinations(built.destinations).call(all...);
  });
  if (!built.agrees_on(text)) return;
  const std::string theirs =
      Destinations(built.peer_destinations).call(sscanf, text.c_str(), built.format.c_str());
  require_equal("the C library", built.format, text, theirs, ours);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes bytes(data, size);
  const size_t choice = bytes.below(256);
  const auto kind = static_cast<Stream>(choice / 2 % 3);
  if (choice % 2 != 0) {
    scan_by_any_format(kind, bytes);
  } else {
    scan_by_built_format(kind, choice / 6 % 4 + 1, bytes);
  }
  return 0;
}
