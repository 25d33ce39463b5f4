// Where formatted output and input part from the C library, shown by calling both. The rows make
// the tables in docs/formatted-output.md and docs/formatted-input.md, between the two marks:
//   deviations output|input PAGE           compares the page's table with what the calls gave
//   deviations output|input PAGE --write   writes it
// A row in which both answer alike is no deviation and fails.
#include <limits.h>
#include <locale.h>

#include <fstream>
#include <iterator>

#include "securec/input/scan.h"
#include "securec/output/engines.h"

using namespace plx_test;

namespace {

struct Row {
  const char* matter;
  std::string call, here, there;
};

std::string code(const std::string& text) { return "`" + text + "`"; }

// A text for the page: ASCII and what the locale writes; anything else by its number.
std::string shown(const char* text) { return text; }
std::string shown(const wchar_t* text) {
  std::string all;
  for (; *text != 0; ++text) {
    char bytes[MB_LEN_MAX], number[16];
    mbstate_t state = {};
    const size_t size = wcrtomb(bytes, *text, &state);
    snprintf(number, sizeof number, "<%lx>",
             static_cast<unsigned long>(static_cast<uint32_t>(*text)));
    all += size != static_cast<size_t>(-1) ? std::string(bytes, size) : number;
  }
  return all;
}

// ---- Output -------------------------------------------------------------------------------------

template <typename Char>
std::string answer(int result, const Char* text) {
  constexpr size_t kMost = 40;
  const std::basic_string<Char> all = text;
  if (result < 0) return "-1";
  if (all.empty() && result == 0) return "nothing";
  if (all.size() > kMost) return std::to_string(result) + " characters";
  const std::string cell = code(shown(text));
  return static_cast<size_t>(result) == all.size() ? cell : cell + ", " + std::to_string(result);
}

template <size_t kRoom, typename Char, typename... Args>
Row output_row(const char* matter, const char* call, const Char* format, Args... args) {
  Char here[kRoom], there[kRoom];
  const int ours = Engine<Char>::ours(here, kRoom, format, args...);
  // Not by its name: these are formats of which the compiler would warn.
  auto* volatile platform = Engine<Char>::platform;
  const int theirs = platform(there, kRoom, format, args...);
  return {matter, code(call), answer(ours, here), answer(theirs, there)};
}

#define ROW_IN(room, matter, ...) output_row<room>(matter, #__VA_ARGS__, __VA_ARGS__)
#define ROW(matter, ...) ROW_IN(700, matter, __VA_ARGS__)

std::vector<Row> output_rows() {
  int number;
  const char* const null = nullptr;
  void* const pointer = reinterpret_cast<void*>(0xbeef);
  const wint_t surrogate = 0xd800;
  const wchar_t all_ones[] = {static_cast<wchar_t>(0xffffffff), 0};
  return {
      ROW_IN(4, "4 characters of room", "%s", "abcdef"),
      ROW("null, cut", "%.3s", null),
      ROW("a count to store", "%n", &number),
      ROW("hexadecimal float", "%a", 1.0),
      ROW("unknown letter", "%k", 1),
      ROW("numbered argument", "%1$d", 5),
      ROW("grouped digits", "%'d", 5),
      ROW("a width before the sign itself", "%5%"),
      ROW("flags behind the width", "%5-d.", 42),
      ROW("digits behind them", "%5-7d.", 42),
      ROW("digits behind a star", "%*4d", 1, 42),
      ROW("the same for a precision", "%.*2d", 1, 42),
      ROW("digits of an integer", "%.600d", 42),
      ROW("sign of a pointer", "%+p", pointer),
      ROW("zeros beside a precision", "%020.9p", pointer),
      ROW("64 bits", "%I64d", 5LL),
      ROW("32 bits", "%I32d", 5),
      ROW("a size, not other digits", "%5I32d", 5),
      ROW("an int", "%wd", 5),
      ROW("N, which says nothing", "%Nd", 5),
      ROW("I before no integer", "%Is", "text"),
      ROW("two sizes", "%hlld", 5LL),
      ROW("wide text?", "%lls", L"wide"),
      ROW("wide text?", "%hls", L"wide"),
      ROW("wide character?", "%hC", L'š'),
      ROW("precision of wide text", "%.3ls", L"äöü"),
      ROW("width of wide text", "%5ls", L"äöü"),
      ROW("no multibyte form", "[%lc]", surrogate),
      ROW("half a character", L"[%c]", 0xc3),
      ROW("all ones", L"[%ls]", all_ones),
  };
}

// ---- Input --------------------------------------------------------------------------------------

// "1 5|_a." as result and destinations.
std::string spelled(const std::string& image) {
  const size_t space = image.find(' ');
  std::string all = image.substr(0, space), places;
  for (const char c : image.substr(space + 1)) places += c == '|' ? "`, `" : std::string(1, c);
  return places.empty() ? all : all + ": " + code(places);
}

// Ours take the sizes of text destinations.
Row input_row(const char* matter, const char* text, const char* format, const char* destinations,
              const char* their_destinations) {
  return {matter, code("\"" + std::string(text) + "\"") + " by " + code(format),
          spelled(scan_string<char>(text, format, destinations)),
          spelled(Destinations(their_destinations).call(sscanf, text, format))};
}

Row input_row(const char* matter, const wchar_t* text, const wchar_t* format,
              const char* destinations, const char* their_destinations) {
  return {matter, "wide " + code("\"" + shown(text) + "\"") + " by " + code(shown(format)),
          spelled(Destinations(destinations).call(swscanf_s, text, format)),
          spelled(Destinations(their_destinations).call(swscanf, text, format))};
}

std::vector<Row> input_rows() {
  return {
      input_row("a destination too small", "hello", "%s", "s5", "t8"),
      input_row("empty text", "", "%s", "s3", "t3"),
      input_row("white space before `%%`", "5 %6", "%d%%%d", "i4 i4", "i4 i4"),
      input_row("a prefix without digits", "0xg", "%x", "i4", "i4"),
      input_row("the same, by prefix", "0xg", "%i", "i4", "i4"),
      input_row("infinity", "inf", "%f", "f", "f"),
      input_row("NaN", "nan", "%f", "f", "f"),
      input_row("hexadecimal float", "0x1p3", "%f", "f", "f"),
      input_row("a float by way of a double", "1.00000017881393432617187499", "%f", "f", "f"),
      input_row("hexadecimal letter", "1.5", "%a", "f", "f"),
      input_row("numbered argument", "5", "%1$d", "i4", "i4"),
      input_row("grouped digits", "5", "%'d", "i4", "i4"),
      input_row("the other case", "7", "%D", "i4", "i4"),
      input_row("the other case", "7", "%U", "i4", "i4"),
      input_row("64 bits, not a width", "5", "%I64d", "i8", "i8"),
      input_row("an int", "5", "%wd", "i4", "i4"),
      input_row("a modifier before a letter", "5", "%Fd", "i4", "i4"),
      input_row("narrow by h", "ab", "%hS", "s12", "t12"),
      input_row("bytes of one character", "a\u00e9b", "%ls", "w5", "u5"),
      input_row("no bytes in the locale", L"a\xd800z", L"%s", "s4", "t4"),
  };
}

// ---- The page -----------------------------------------------------------------------------------

std::string table(const std::vector<Row>& rows, bool* all_deviate) {
  std::string text = "| matter | call | here | C library |\n|---|---|---|---|\n";
  for (const Row& row : rows) {
    if (row.here == row.there) {
      fprintf(stderr, "no deviation: %s gives %s\n", row.call.c_str(), row.here.c_str());
      *all_deviate = false;
    }
    text += std::string("| ") + row.matter + " | " + row.call + " | " + row.here + " | " +
            row.there + " |\n";
  }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || setlocale(LC_ALL, "C.UTF-8") == nullptr) return 2;
  const std::string family = argv[1], path = argv[2];
  const std::string first = "<!-- deviations -->\n", last = "<!-- /deviations -->";
  std::ifstream file(path);
  std::string page((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const size_t from = page.find(first), to = page.find(last);
  if (from == std::string::npos || to == std::string::npos) {
    fprintf(stderr, "%s: no table between %s%s\n", path.c_str(), first.c_str(), last.c_str());
    return 2;
  }
  bool all_deviate = true;
  const std::string wanted = table(family == "output" ? output_rows() : input_rows(), &all_deviate);
  const size_t begin = from + first.size();
  const bool same = page.compare(begin, to - begin, wanted) == 0;
  if (argc > 3 && std::string(argv[3]) == "--write") {
    std::ofstream(path) << page.replace(begin, to - begin, wanted);
  } else if (!same) {
    fprintf(stderr, "%s holds another table than\n%s", path.c_str(), wanted.c_str());
    return 1;
  }
  return all_deviate ? 0 : 1;
}
