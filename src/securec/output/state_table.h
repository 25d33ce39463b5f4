// How a format is read: nine classes of characters, nine states, and one table for both widths.
//
// Text is literal in kNormal; '%' opens a conversion. Each further character moves the machine
// on until it reaches kType, where the conversion is complete, or kInvalid, where the call fails.
// Two moves that callers depend on: a flag behind a width is still a flag ("%5-d"), and "%%"
// goes back to kNormal, which prints the second '%'.
#ifndef PLX_SRC_SECUREC_OUTPUT_STATE_TABLE_H
#define PLX_SRC_SECUREC_OUTPUT_STATE_TABLE_H

#include <stddef.h>
#include <stdint.h>

namespace plx::securec {

enum class State : uint8_t {
  kNormal,
  kPercent,
  kFlag,
  kWidth,
  kDot,
  kPrecision,
  kSize,
  kType,
  kInvalid,
};

enum class CharClass : uint8_t {
  kOther,
  kPercent,
  kDot,
  kStar,
  kZero,
  kDigit,
  kFlag,
  kSize,
  kType
};

constexpr size_t kNumStates = 9;
constexpr size_t kNumClasses = 9;
constexpr uint32_t kFirstCode = ' ';
constexpr size_t kNumCodes = 'z' - ' ' + 1;

constexpr bool is_one_of(const char* set, char c) {
  while (*set != 0 && *set != c) ++set;
  return *set != 0;
}

constexpr CharClass classify(char c) {
  if (c == '%') return CharClass::kPercent;
  if (c == '.') return CharClass::kDot;
  if (c == '*') return CharClass::kStar;
  if (c == '0') return CharClass::kZero;
  if (c >= '1' && c <= '9') return CharClass::kDigit;
  if (is_one_of(" #+-", c)) return CharClass::kFlag;
  if (is_one_of("ILNZhjlqtwz", c)) return CharClass::kSize;
  // 'n' is no type: a conversion that writes through its argument is refused.
  if (is_one_of("CEFGSXcdefgiopsux", c)) return CharClass::kType;
  return CharClass::kOther;
}

// One row a class, one column a state: N(ormal) P(ercent) F(lag) W(idth) D(ot) p(recision) S(ize)
// T(ype), '!' invalid.
constexpr char kTransitions[kNumClasses][kNumStates + 1] = {
    // NPFWDpST!
    "N!!!!!!NN",  // other
    "PN!!!!!PN",  // percent
    "NDDD!!!NN",  // dot
    "NWW!p!!NN",  // star
    "NFFWpp!NN",  // zero
    "NWWWpp!NN",  // digit
    "NFFF!!!NN",  // flag
    "NSSSSSSNN",  // size
    "NTTTTTTNN",  // type
};

constexpr State state_named(char name) {
  constexpr char kNames[] = "NPFWDpST!";
  size_t i = 0;
  while (kNames[i] != name) ++i;
  return static_cast<State>(i);
}

// Byte i: bits 0 to 3 are the class of the character ' ' + i, bits 4 to 7 the next state for
// class * kNumStates + state == i.
struct StateTable {
  uint8_t bytes[kNumCodes];
};

constexpr StateTable make_state_table() {
  StateTable table{};
  for (size_t i = 0; i < kNumCodes; ++i) {
    const char code = static_cast<char>(kFirstCode + i);
    unsigned byte = static_cast<unsigned>(classify(code));
    if (i < kNumClasses * kNumStates) {
      byte |= static_cast<unsigned>(state_named(kTransitions[i / kNumStates][i % kNumStates])) << 4;
    }
    table.bytes[i] = static_cast<uint8_t>(byte);
  }
  return table;
}

inline constexpr StateTable kStateTable = make_state_table();
static_assert(sizeof kStateTable == 91, "' ' to 'z'");

// `code` is the value of the character, whatever its width and signedness.
constexpr State next_state(State state, uint32_t code) {
  const uint32_t index = code - kFirstCode;  // wraps below ' ', and is then too large
  const unsigned char_class = index < kNumCodes ? kStateTable.bytes[index] & 15u : 0;
  return static_cast<State>(
      kStateTable.bytes[char_class * kNumStates + static_cast<unsigned>(state)] >> 4);
}

}  // namespace plx::securec

#endif
