// The engine: follows a format directive by directive through a source, and stores what the
// conversions read.
//
//   format ─► white space | literal | Conversion ─► Field of the source ─► value ─► store by size
#ifndef PLX_SRC_SECUREC_INPUT_SCANNER_H
#define PLX_SRC_SECUREC_INPUT_SCANNER_H

#include <stdarg.h>
#include <stddef.h>

#include "securec/input/conversion.h"
#include "securec/input/field.h"
#include "securec/input/floating.h"
#include "securec/input/integer.h"
#include "securec/input/scanset.h"
#include "securec/input/source.h"
#include "securec/input/text_destination.h"
#include "securec/limits.h"

namespace plx::securec::input {

// What a scan returns beside its count.
constexpr int kEndOfInput = -1;       // the input ended before anything was assigned
constexpr int kNullDestination = -2;  // an argument was null

template <typename Char>
class Scanner {
 public:
  Scanner(Source<Char>& source, const Char* format, va_list args)
      : source_(source), format_(format) {
    va_copy(args_, args);
  }
  ~Scanner() { va_end(args_); }
  Scanner(const Scanner&) = delete;
  Scanner& operator=(const Scanner&) = delete;

  // Returns the number of fields assigned, or one of the results above.
  int scan() {
    Step step = Step::kDone;
    while (step == Step::kDone && *format_ != 0) step = follow_directive();
    if (step == Step::kNull) return kNullDestination;
    if (step == Step::kInputEnded && assigned_ == 0) return kEndOfInput;
    return assigned_;
  }

 private:
  // How a directive ended. Everything but kDone ends the scan.
  enum class Step { kDone, kMismatch, kInputEnded, kNull };

  // The way of an integer is one function: calls would cost as much as its digits do.
  [[gnu::always_inline]] Step follow_directive() {
    if (*format_ == '%') {
      ++format_;
      if (*format_ != '%') return convert();
    } else if (is_space(*format_)) {
      do {
        ++format_;
      } while (is_space(*format_));
      skip_white_space();
      return Step::kDone;
    }
    return match_literal(*format_++);
  }

  // Returns false at the end of the input.
  [[gnu::always_inline]] bool skip_white_space() {
    while (source_.fill()) {
      const Char* at = source_.at();
      while (at != source_.end() && is_space(*at)) ++at;
      source_.take_until(at);
      if (at != source_.end()) return true;
    }
    return false;
  }

  Step match_literal(Char c) {
    if (!source_.fill()) return Step::kInputEnded;
    return Field<Char>(source_, 1).accept(c) ? Step::kDone : Step::kMismatch;
  }

  [[gnu::always_inline]] Step convert() {
    const Letter& letter = kLetters.of[ascii(*format_)];
    if (letter.kind == Kind::kNone || letter.is_modifier) return convert_with_options();
    ++format_;
    if (letter.kind != Kind::kInteger) return convert_other(Conversion{&letter});
    return skip_white_space() ? convert_integer(Conversion{&letter}) : Step::kInputEnded;
  }

  [[gnu::noinline]] Step convert_with_options() {
    Conversion conversion;
    format_ = read_conversion(format_, &conversion);
    if (conversion.letter->kind != Kind::kInteger) return convert_other(conversion);
    return skip_white_space() ? convert_integer(conversion) : Step::kInputEnded;
  }

  // Everything but integers.
  [[gnu::noinline]] Step convert_other(const Conversion& conversion) {
    switch (conversion.letter->kind) {
      case Kind::kFloat:
        return skip_white_space() ? convert_floating(conversion) : Step::kInputEnded;
      case Kind::kString:
        return skip_white_space() ? convert_text(conversion, nullptr) : Step::kInputEnded;
      case Kind::kCharacters:
        return source_.fill() ? convert_text(conversion, nullptr) : Step::kInputEnded;
      case Kind::kSet:
        return convert_set(conversion);
      case Kind::kCount:
        return convert_count(conversion);
      default:
        return Step::kMismatch;
    }
  }

  Step convert_set(const Conversion& conversion) {
    SetList<Char> list;
    const Char* end = read_set_list(format_, &list);
    if (end == nullptr) return Step::kMismatch;
    format_ = end;
    if (!source_.fill()) return Step::kInputEnded;
    const Scanset<Char> set(list);
    return convert_text(conversion, &set);
  }

  // The characters that a conversion may take when its width does not say otherwise.
  static size_t width_of(const Conversion& conversion, size_t otherwise) {
    return conversion.width == Conversion::kNoWidth ? otherwise : conversion.width;
  }

  Step convert_count(const Conversion& conversion) {
    if (conversion.suppressed) return Step::kDone;
    void* dst = va_arg(args_, void*);
    if (dst == nullptr) return Step::kNull;
    store_integer(dst, conversion.integer_size(), source_.taken());
    return Step::kDone;
  }

  [[gnu::always_inline]] Step convert_integer(const Conversion& conversion) {
    void* dst = nullptr;
    // A letter without options is never suppressed.
    if (!conversion.suppressed && (dst = va_arg(args_, void*)) == nullptr) {  // GCOVR_EXCL_BR_LINE
      return Step::kNull;
    }
    uint64_t value;
    if (!take_integer(conversion, &value)) return Step::kMismatch;
    if (dst == nullptr) return Step::kDone;  // GCOVR_EXCL_BR_LINE
    store_integer(dst, conversion.integer_size(), value);
    ++assigned_;
    return Step::kDone;
  }

  [[gnu::always_inline]] bool take_integer(const Conversion& conversion, uint64_t* out) {
    Field<Char> field(source_, width_of(conversion, SIZE_MAX));
    Run<Char> run = field.run();
    const bool is_number = read_integer(*conversion.letter, &run, out);
    // A number that may go on behind the window is read again, by the way that asks for more.
    if (run.at() == source_.end() && !source_.is_last_window()) {
      return take_integer_across_windows(*conversion.letter, field, out);
    }
    source_.take_until(run.at());
    return is_number;
  }

  [[gnu::noinline]] static bool take_integer_across_windows(const Letter& letter, Field<Char> field,
                                                            uint64_t* out) {
    return read_integer(letter, &field, out);
  }

  Step convert_floating(const Conversion& conversion) {
    void* dst = nullptr;
    if (!conversion.suppressed && (dst = va_arg(args_, void*)) == nullptr) return Step::kNull;
    double value;
    const Field<Char> field(source_, width_of(conversion, SIZE_MAX));
    if (!read_floating(field, &value)) return Step::kMismatch;
    if (dst == nullptr) return Step::kDone;
    store_floating(dst, conversion, value);
    ++assigned_;
    return Step::kDone;
  }

  // `set` is null for everything but %[.
  [[gnu::noinline]] Step convert_text(const Conversion& conversion, const Scanset<Char>* set) {
    if (conversion.suppressed) return collect_text(conversion, set, NoDestination());
    return conversion.is_wide() ? store_text<wchar_t>(conversion, set)
                                : store_text<char>(conversion, set);
  }

  template <typename Dst>
  Step store_text(const Conversion& conversion, const Scanset<Char>* set) {
    Dst* dst = va_arg(args_, Dst*);
    if (dst == nullptr) return Step::kNull;
    const unsigned dst_count = va_arg(args_, unsigned);
    if (dst_count == 0) {
      *dst = 0;
      return Step::kMismatch;
    }
    if (!is_valid_capacity<Dst>(dst_count)) return Step::kMismatch;
    const bool is_terminated = conversion.letter->kind != Kind::kCharacters;
    const TextDestination<Dst> room(dst, dst_count - (is_terminated ? 1 : 0));
    const Step step = collect_text(conversion, set, room);
    if (step == Step::kDone) ++assigned_;
    return step;
  }

  template <typename Destination>
  Step collect_text(const Conversion& conversion, const Scanset<Char>* set, Destination dst) {
    const Kind kind = conversion.letter->kind;
    Field<Char> field(source_, width_of(conversion, kind == Kind::kCharacters ? 1 : SIZE_MAX));
    bool has_some = false, has_room;
    const Char* stored;
    do {
      const Run<Char> run = field.run();
      // One character more than fits is enough to see that the text does not.
      const bool is_longer = static_cast<size_t>(run.end() - run.at()) > dst.room();
      const Char* const end = is_longer ? run.at() + dst.room() + 1 : run.end();
      const Char* const stop = run_end(kind, set, run.at(), end);
      stored = dst.put(run.at(), stop);
      has_some = has_some || stored != run.at();
      has_room = stored == stop;
    } while (field.take_until(stored));
    if (!has_room) {
      dst.clear_first();
      return Step::kMismatch;
    }
    if (!has_some) return Step::kMismatch;
    if (kind != Kind::kCharacters) dst.terminate();
    return Step::kDone;
  }

  // The first character that does not belong to the text.
  static const Char* run_end(Kind kind, const Scanset<Char>* set, const Char* at, const Char* end) {
    if (kind == Kind::kString) return find_space(at, end);
    return kind == Kind::kSet ? set->run_end(at, end) : end;
  }

  Source<Char>& source_;
  const Char* format_;
  va_list args_;
  int assigned_ = 0;
};

}  // namespace plx::securec::input

#endif
