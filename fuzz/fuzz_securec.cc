// Bounds-checked memory, strings, tokens and lines, one call or a few of them in an arena of memory
// in which destination and source lie anywhere, so that every kind of overlap comes up.
//
// After every call must hold:
//  - the code is that of a naive model, with several arguments bad at once too;
//  - every byte of the arena, those around the destination included, is what the model left.
#include <plx/securec.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "program.h"
#include "string_model.h"
#include "support/standard_input.h"

namespace plx_fuzz {
namespace {

using namespace plx_test;

// An arena of ours and one of the model's. Sanitizers see what passes its ends.
template <typename Char, size_t kCount>
struct Arenas {
  Char ours[kCount], theirs[kCount];

  explicit Arenas(Program& program) {
    const size_t repeats = 1 + program.below(8);
    const size_t period = std::min(kCount, 1 + 5 * repeats);
    for (size_t i = 0; i < period; ++i) {
      const uint8_t byte = program.byte();
      // Wide characters whose lowest byte is zero, too.
      const int shift = sizeof(Char) == 1 ? 0 : byte % 3 * 8;
      ours[i] = static_cast<Char>(byte % 8 == 0 ? 0 : byte << shift);
    }
    for (size_t i = period; i < kCount; ++i) ours[i] = ours[i - period];
    std::copy_n(ours, kCount, theirs);
  }
  bool same() const { return memcmp(ours, theirs, sizeof ours) == 0; }
};

// Up to `room`, or a size that `limit` refuses, among them those that wrap in bytes.
size_t size_up_to(Program& program, size_t room, size_t limit) {
  if (!program.one_in(12)) return program.one_in(4) ? room : program.below(room + 1);
  const size_t refused[] = {
      0, limit + 1, limit + 2, 2 * (limit + 1), std::max(limit + 1, SIZE_MAX / 4 + 2), SIZE_MAX};
  return refused[program.below(sizeof refused / sizeof *refused)];
}

// ---- Memory -------------------------------------------------------------------------------------

struct Rules {
  bool tests_sign;  // when nothing else is wrong
  bool may_overlap;
};

bool is_size(size_t size) { return size >= 1 && size <= SECURE_MEM_LIMIT; }

errno_t clear(uint8_t* dst, size_t size, int c, errno_t code) {
  for (size_t i = 0; i < size; ++i) dst[i] = static_cast<uint8_t>(c);
  return code;
}

errno_t model_fill(Rules rules, uint8_t* dst, size_t size, int c, size_t count) {
  if (dst != nullptr && count <= size) {
    if (rules.tests_sign && size > SECURE_MEM_LIMIT) return ERANGE;
    return clear(dst, count, c, EOK);
  }
  if (!is_size(size)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  return clear(dst, size, c, ERANGE_CLEARED);
}

errno_t model_copy(Rules rules, uint8_t* dst, size_t size, const uint8_t* src, size_t count) {
  const auto to = reinterpret_cast<uintptr_t>(dst), from = reinterpret_cast<uintptr_t>(src);
  const bool overlaps = to != from && (to < from ? from - to < count : to - from < count);
  const bool is_plain = dst != nullptr && src != nullptr && count != 0 && count <= size &&
                        dst != src && (rules.may_overlap || !overlaps);
  if (!is_size(size) && (rules.tests_sign || !is_plain)) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return clear(dst, size, 0, EINVAL_CLEARED);
  if (count > size) return clear(dst, size, 0, ERANGE_CLEARED);
  if (count != 0 && overlaps && !rules.may_overlap) return clear(dst, size, 0, EOVERLAP_CLEARED);
  const std::vector<uint8_t> bytes(src, src + count);
  std::copy(bytes.begin(), bytes.end(), dst);
  return EOK;
}

errno_t model_wide(Rules rules, uint8_t* dst, size_t count_max, const uint8_t* src, size_t count) {
  if (count_max < 1 || count_max > SECURE_WCHAR_LIMIT) return ERANGE;
  if (count <= count_max) return model_copy(rules, dst, 4 * count_max, src, 4 * count);
  return dst == nullptr ? ERANGE : clear(dst, 4 * count_max, 0, ERANGE_CLEARED);
}

void check_fill(Program& program) {
  struct {
    errno_t (*call)(void*, size_t, int, size_t);
    Rules rules;
  } constexpr kFills[] = {
      {memset_s, {true, false}}, {memset_sOptAsm, {true, false}}, {memset_sOptTc, {false, false}}};
  const auto& fill = kFills[program.below(3)];
  Arenas<uint8_t, 160> arena(program);
  const size_t at = program.below(161), room = 160 - at;
  const size_t size = size_up_to(program, room, SECURE_MEM_LIMIT);
  size_t count = size_up_to(program, room, SECURE_MEM_LIMIT);
  if (count > room && count <= size) count = room;  // nobody fills what is not there
  const int c = program.one_in(2) ? -static_cast<int>(program.below(2)) : program.byte() * 3;
  const bool is_null = program.one_in(16);
  CHECK(fill.call(is_null ? nullptr : arena.ours + at, size, c, count) ==
        model_fill(fill.rules, is_null ? nullptr : arena.theirs + at, size, c, count));
  CHECK(arena.same());
}

struct CopyArguments {
  size_t dst, src, size, count;
  bool is_null_dst, is_null_src;

  // Sizes and places in an arena of `all` units.
  CopyArguments(Program& program, size_t all, size_t limit)
      : dst(program.below(all + 1)), src(program.below(all + 1)) {
    if (program.one_in(4)) src = dst;
    const size_t room = all - std::max(dst, src);
    size = size_up_to(program, all - dst, limit);
    count = size_up_to(program, room, limit);
    if (count > room && count <= size) count = room;
    is_null_dst = program.one_in(16);
    is_null_src = program.one_in(16);
  }
  template <typename T>
  T* to(T* arena) const {
    return is_null_dst ? nullptr : arena + dst;
  }
  template <typename T>
  T* from(T* arena) const {
    return is_null_src ? nullptr : arena + src;
  }
};

void check_copy(Program& program) {
  struct {
    errno_t (*call)(void*, size_t, const void*, size_t);
    Rules rules;
  } constexpr kCopies[] = {{memcpy_s, {true, false}},
                           {memcpy_sOptAsm, {true, false}},
                           {memcpy_sOptTc, {false, false}},
                           {memmove_s, {true, true}}};
  const auto& copy = kCopies[program.below(4)];
  Arenas<uint8_t, 220> arena(program);
  const CopyArguments a(program, 220, SECURE_MEM_LIMIT);
  CHECK(copy.call(a.to(arena.ours), a.size, a.from(arena.ours), a.count) ==
        model_copy(copy.rules, a.to(arena.theirs), a.size, a.from(arena.theirs), a.count));
  CHECK(arena.same());
}

void check_wide_copy(Program& program) {
  const bool moves = program.one_in(2);
  Arenas<wchar_t, 60> arena(program);
  const CopyArguments a(program, 60, SECURE_WCHAR_LIMIT);
  const Rules rules = {true, moves};
  const auto* const from = reinterpret_cast<const uint8_t*>(a.from(arena.theirs));
  CHECK((moves ? wmemmove_s : wmemcpy_s)(a.to(arena.ours), a.size, a.from(arena.ours), a.count) ==
        model_wide(rules, reinterpret_cast<uint8_t*>(a.to(arena.theirs)), a.size, from, a.count));
  CHECK(arena.same());
}

void check_unchecked_move(Program& program) {
  Arenas<uint8_t, 120> arena(program);
  const size_t dst = program.below(121), src = program.below(121);
  const size_t count = program.below(121 - std::max(dst, src));
  util_memmove(arena.ours + dst, arena.ours + src, count);
  const std::vector<uint8_t> bytes(arena.theirs + src, arena.theirs + src + count);
  std::copy(bytes.begin(), bytes.end(), arena.theirs + dst);
  CHECK(arena.same());
}

// ---- Strings ------------------------------------------------------------------------------------

// The refusals, and then the copy or the append character by character.
template <typename Char>
errno_t model_string(bool appends, Char* dst, size_t size, const Char* src, size_t limit,
                     bool is_counted) {
  if (size < 1 || size > Calls<Char>::kLimit) return ERANGE;
  if (dst == nullptr) return EINVAL;
  if (src == nullptr) return empty(dst, EINVAL_CLEARED);
  if (is_counted && limit > Calls<Char>::kLimit) return empty(dst, ERANGE_CLEARED);
  return appends ? model_append(dst, size, src, limit)
                 : plx_test::model_copy(dst, size, src, limit);
}

template <typename Char>
errno_t call_string(bool appends, Char* dst, size_t size, const Char* src, size_t limit,
                    bool is_counted) {
  using C = Calls<Char>;
  if (appends) {
    return is_counted ? C::append(dst, size, src, limit) : C::append(dst, size, src);
  }
  return is_counted ? C::copy(dst, size, src, limit) : C::copy(dst, size, src);
}

template <typename Char>
void check_string(Program& program) {
  constexpr size_t kCount = 200;
  Arenas<Char, kCount> arena(program);
  const size_t dst = program.below(kCount);
  const size_t src = program.one_in(8) ? dst : program.below(kCount);
  if (program.one_in(2)) {
    const size_t end = std::min(kCount - 1, std::max(dst, src) + program.below(72));
    arena.ours[end] = arena.theirs[end] = 0;
  }
  const bool appends = program.one_in(2), is_counted = program.one_in(2);
  const size_t size = size_up_to(program, kCount - dst, Calls<Char>::kLimit);
  const size_t few = program.below(16);
  const size_t limit = !is_counted ? kWhole
                       : few < 4   ? few
                                   : size_up_to(program, kCount, Calls<Char>::kLimit);
  // What a caller owes: a source that ends, or that has all that may be asked for.
  const bool ends = std::find(arena.ours + src, arena.ours + kCount, 0) != arena.ours + kCount;
  if (!ends && std::min(size, limit) > kCount - src) {
    arena.ours[kCount - 1] = arena.theirs[kCount - 1] = 0;
  }
  const bool is_null_dst = program.one_in(16), is_null_src = program.one_in(16);
  const auto at = [](Char* place, bool is_null) { return is_null ? nullptr : place; };
  CHECK(call_string<Char>(appends, at(arena.ours + dst, is_null_dst), size,
                          at(arena.ours + src, is_null_src), limit, is_counted) ==
        model_string<Char>(appends, at(arena.theirs + dst, is_null_dst), size,
                           at(arena.theirs + src, is_null_src), limit, is_counted));
  CHECK(arena.same());
}

char* tokenise(char* str, const char* delim, char** context) {
  return strtok_s(str, delim, context);
}
wchar_t* tokenise(wchar_t* str, const wchar_t* delim, wchar_t** context) {
  return wcstok_s(str, delim, context);
}

// Tokens with changing delimiters, by positions in the text.
template <typename Char>
void check_tokens(Program& program) {
  using Text = std::basic_string<Char>;
  Text ours;
  for (const char c : program.text(40, "ab,; \xE9")) {
    ours += static_cast<Char>(static_cast<unsigned char>(c));
  }
  if (sizeof(Char) > 1 && !ours.empty()) ours[0] = static_cast<Char>(ours[0] + 0x100);
  Text theirs = ours;
  Char* context = nullptr;
  size_t next = 0;
  for (bool first = true; first || !program.done(); first = false) {
    Text delimiters;
    for (const char c : program.text(3, ",; ab")) delimiters += static_cast<Char>(c);
    if (program.one_in(8)) CHECK(tokenise(nullptr, nullptr, &context) == nullptr);
    if (program.one_in(8)) CHECK(tokenise(&ours[0], delimiters.c_str(), nullptr) == nullptr);
    Char* const token = tokenise(first ? &ours[0] : nullptr, delimiters.c_str(), &context);
    const size_t start = std::min(theirs.find_first_not_of(delimiters, next), theirs.size());
    const size_t end = std::min(theirs.find_first_of(delimiters, start), theirs.size());
    CHECK(token == (start == theirs.size() ? nullptr : &ours[start]));
    next = std::min(end + (start < theirs.size() ? 1 : 0), theirs.size());
    if (start < end && end < theirs.size()) theirs[end] = 0;
    CHECK(context == &ours[next]);
    CHECK(ours == theirs);
  }
}

// ---- Lines --------------------------------------------------------------------------------------

void check_lines(Program& program) {
  const std::string input = program.text(60, std::string("\r\na\0bc", 6));
  StandardInput stream(fmemopen(const_cast<char*>(input.data()), input.size(), "r"));
  size_t at = 0;
  for (bool first = true; first || !program.done(); first = false) {
    const int size = program.one_in(8) ? program.index(0) : static_cast<int>(2 + program.below(30));
    char ours[40], theirs[40];
    memset(ours, '?', sizeof ours);
    memset(theirs, '?', sizeof theirs);
    if (size == 1 || size > 40) continue;  // whether a room of 1 sees the end is the platform's
    const bool finds = size > 0 && at < input.size();
    if (finds) {
      const size_t end = std::min(input.find('\n', at), input.size() - 1) + 1;
      const size_t count = std::min(end - at, static_cast<size_t>(size) - 1);
      std::copy_n(&input[at], count, theirs);
      theirs[count] = 0;
      std::string text(theirs);
      text.erase(text.find_last_not_of("\r\n") + 1);
      theirs[text.size()] = 0;
      at += count;
    }
    CHECK(gets_s(ours, size) == (finds ? ours : nullptr));
    CHECK(memcmp(ours, theirs, sizeof ours) == 0);
  }
}

}  // namespace
}  // namespace plx_fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plx_fuzz;
  constexpr void (*kChecks[])(Program&) = {check_fill,         check_copy,
                                           check_wide_copy,    check_unchecked_move,
                                           check_string<char>, check_string<wchar_t>,
                                           check_tokens<char>, check_tokens<wchar_t>,
                                           check_string<char>, check_lines};
  Program program(data, std::min<size_t>(size, 256));
  kChecks[program.below(sizeof kChecks / sizeof *kChecks)](program);
  return 0;
}
