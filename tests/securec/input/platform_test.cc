// Numbers at which something changes, against the C library's sscanf. Where the two do not follow
// the same rules the reason is given. Texts and sets are in fuzz/fuzz_input.cc.
#include <fenv.h>
#include <gtest/gtest.h>

#include <random>

#include "securec/input/scan.h"

using namespace plx_test;

namespace {

const char* const kWidths[] = {"", "1", "2", "3", "5", "20"};

std::vector<std::string> split(const std::string& all) {
  std::vector<std::string> parts;
  for (size_t at = 0; at <= all.size(); at += parts.back().size() + 1) {
    parts.push_back(all.substr(at, all.find('|', at) - at));
  }
  return parts;
}

// The C library takes "0x" for a zero even where no digit follows.
bool is_bare_prefix(const std::string& text, const std::string& theirs, const std::string& ours) {
  if (ours != "0 .|." || theirs.compare(0, 4, "1 0|") != 0) return false;
  return (text[strtoul(theirs.c_str() + 4, nullptr, 10) - 1] | 0x20) == 'x';
}

// Both widths give what the C library gives. `their_destinations` take no sizes.
void expect_agreement(const std::string& text, const std::string& format,
                      const std::string& their_destinations, const std::string& destinations) {
  const std::string theirs =
      Destinations(their_destinations).call(sscanf, text.c_str(), format.c_str());
  const std::string ours = scan_string<char>(text, format, destinations);
  EXPECT_TRUE(ours == theirs || is_bare_prefix(text, theirs, ours))
      << text << " by " << format << ": " << theirs << ", ours " << ours;
  EXPECT_EQ(ours, scan_string<wchar_t>(text, format, destinations)) << text << " by " << format;
}

// The C library gathers what is no longer than a long in a long, and stays at its limits.
bool passes_a_long(const std::string& text, const std::string& modifier) {
  return sizeof(long) < 8 && modifier != "ll" && modifier != "j" && text.size() > 9;
}

TEST(Platform, IntegersAgree) {
  const char* const sizes[][2] = {{"hh", "i1"}, {"h", "i2"}, {"", "i4"},  {"l", "il"},
                                  {"ll", "i8"}, {"j", "i8"}, {"z", "il"}, {"t", "il"}};
  for (const std::string& text :
       split("0|1|-1|+7| 42|\t-042x|08|0x|0x1|0X1f|-0x80|+0xg|0xfg|00x1|-|+|-+1|--1|- 1|x| |127|128"
             "|255|256|-129|32767|32768|65536|2147483647|2147483648|-2147483648|-2147483649"
             "|4294967295|4294967296|9223372036854775807|9223372036854775808|-9223372036854775808"
             "|-9223372036854775809|18446744073709551615|18446744073709551616|-18446744073709551615"
             "|-18446744073709551616|0xffffffffffffffff|0x10000000000000000|1777777777777777777777"
             "|7777777777777777777777|12,34|1.5|1e5|deadbeefcafebabe1|0000000000000000000000001")) {
    for (const auto& [modifier, destination] : sizes) {
      if (passes_a_long(text, modifier)) continue;
      for (const char* width : kWidths) {
        for (const char letter : {'d', 'i', 'u', 'o', 'x', 'X'}) {
          const std::string destinations = std::string(destination) + " i4";
          expect_agreement(text, std::string("%") + width + modifier + letter + "%n", destinations,
                           destinations);
        }
      }
    }
  }
}

TEST(Platform, FloatsAgree) {
  for (const std::string& text :
       split("0|-0|1|+1.5| -2.25x|.5|5.|.|-.5e-3|1e5|1E+5|1e-5|1e|1e+|1ex|1.5.2|1,5|e5|-|x|1e400"
             "|-1e400|1e-400|4.9e-324|2.2250738585072011e-308|0.1|123456789012345678901234567890"
             "|179769313486231570000000000000000000000|1.7976931348623157e308|3.4028236e38|8.5"
             "|9007199254740993|90071992547409925|18446744073709551617|0.30000000000000004"
             "|00012.50|1e00005|1e99999999999|1e23|1e22")) {
    for (const char* width : kWidths) {
      for (const char* letter : {"lf", "le", "lg", "lE", "lG"}) {
        expect_agreement(text, std::string("%") + width + letter + "%n", "d i4", "d i4");
      }
    }
  }
}

// Short decimals do not go through strtod, in any mode of rounding.
TEST(Platform, DecimalsAreRoundedAsByStrtod) {
  std::mt19937 random(1);
  const auto below = [&](unsigned n) { return random() % n; };
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (int i = 0; i < 20000; ++i) {
      std::string text = below(2) == 0 ? "-" : "";
      for (unsigned digits = 1 + below(18); digits > 0; --digits) text += "0123456789"[below(10)];
      if (below(4) != 0) text.insert(text.size() - below(static_cast<unsigned>(text.size())), ".");
      if (below(2) == 0) text += "e" + std::to_string(static_cast<int>(below(60)) - 30);
      double value = 0;
      fesetround(mode);
      const double expected = strtod(text.c_str(), nullptr);
      sscanf_s(text.c_str(), "%lf", &value);
      fesetround(FE_TONEAREST);
      ASSERT_EQ(0, memcmp(&expected, &value, sizeof value)) << text << " in mode " << mode;
    }
  }
}

}  // namespace
