// The engine: follows a format directive by directive through a source, and stores what the
// conversions read.
//
//   format ─► white space | literal | Conversion ─► Field of the source ─► value ─► store by size
#ifndef PLX_SRC_SECUREC_INPUT_SCANNER_H
#define PLX_SRC_SECUREC_INPUT_SCANNER_H

#include <stdarg.h>
#include <stddef.h>

#include <algorithm>

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

  Step follow_directive() {
    if (is_space(*format_)) {
      do {
        ++format_;
      } while (is_space(*format_));
      skip_white_space();
      return Step::kDone;
    }
    if (*format_ == '%') {
      ++format_;
      if (*format_ != '%') return convert();
    }
    return match_literal(*format_++);
  }

  void skip_white_space() {
    Field<Char>(source_, SIZE_MAX).take_runs([](const Char* begin, const Char* end) {
      while (begin != end && is_space(*begin)) ++begin;
      return begin;
    });
  }

  Step match_literal(Char c) {
    if (!source_.fill()) return Step::kInputEnded;
    return Field<Char>(source_, 1).accept(c) ? Step::kDone : Step::kMismatch;
  }

  Step convert() {
    Conversion conversion;
    SetList<Char> set;
    format_ = read_conversion(format_, &conversion);
    const Kind kind = conversion.letter.kind;
    if (kind == Kind::kNone) return Step::kMismatch;
    if (kind == Kind::kSet) {
      const Char* end = read_set_list(format_, &set);
      if (end == nullptr) return Step::kMismatch;
      format_ = end;
    }
    if (kind == Kind::kCount) return convert_count(conversion);
    if (kind != Kind::kCharacters && kind != Kind::kSet) skip_white_space();
    if (!source_.fill()) return Step::kInputEnded;
    switch (kind) {
      case Kind::kInteger:
        return convert_integer(conversion);
      case Kind::kFloat:
        return convert_floating(conversion);
      default:
        return convert_text(conversion, set);
    }
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

  Step convert_integer(const Conversion& conversion) {
    void* dst = nullptr;
    if (!conversion.suppressed && (dst = va_arg(args_, void*)) == nullptr) return Step::kNull;
    uint64_t value;
    const Field<Char> field(source_, width_of(conversion, SIZE_MAX));
    if (!read_integer(conversion, field, &value)) return Step::kMismatch;
    if (dst == nullptr) return Step::kDone;
    store_integer(dst, conversion.integer_size(), value);
    ++assigned_;
    return Step::kDone;
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

  Step convert_text(const Conversion& conversion, const SetList<Char>& set) {
    if (conversion.suppressed) return collect_text(conversion, set, NoDestination());
    return conversion.is_wide() ? store_text<wchar_t>(conversion, set)
                                : store_text<char>(conversion, set);
  }

  template <typename Dst>
  Step store_text(const Conversion& conversion, const SetList<Char>& set) {
    Dst* dst = va_arg(args_, Dst*);
    if (dst == nullptr) return Step::kNull;
    const unsigned dst_count = va_arg(args_, unsigned);
    if (dst_count == 0) {
      *dst = 0;
      return Step::kMismatch;
    }
    if (!is_valid_capacity<Dst>(dst_count)) return Step::kMismatch;
    const bool is_terminated = conversion.letter.kind != Kind::kCharacters;
    const TextDestination<Dst> room(dst, dst_count - (is_terminated ? 1 : 0));
    const Step step = collect_text(conversion, set, room);
    if (step == Step::kDone) ++assigned_;
    return step;
  }

  template <typename Destination>
  Step collect_text(const Conversion& conversion, const SetList<Char>& set, Destination dst) {
    const Kind kind = conversion.letter.kind;
    const Scanset<Char> scanset(set);
    Field<Char> field(source_, width_of(conversion, kind == Kind::kCharacters ? 1 : SIZE_MAX));
    bool has_some = false, has_room = true;
    field.take_runs([&](const Char* begin, const Char* end) {
      // One character more than fits is enough to see that the text does not.
      if (static_cast<size_t>(end - begin) > dst.room()) end = begin + dst.room() + 1;
      const Char* stop = run_end(kind, scanset, begin, end);
      const Char* stored = dst.put(begin, stop);
      has_some = has_some || stored != begin;
      has_room = stored == stop;
      return stored;
    });
    if (!has_room) {
      dst.clear_first();
      return Step::kMismatch;
    }
    if (!has_some) return Step::kMismatch;
    if (kind != Kind::kCharacters) dst.terminate();
    return Step::kDone;
  }

  // The first character that does not belong to the text.
  static const Char* run_end(Kind kind, const Scanset<Char>& scanset, const Char* begin,
                             const Char* end) {
    switch (kind) {
      case Kind::kString:
        return std::find_if(begin, end, [](Char c) { return is_space(c); });
      case Kind::kSet:
        return std::find_if(begin, end, [&](Char c) { return !scanset.contains(c); });
      default:
        return end;
    }
  }

  Source<Char>& source_;
  const Char* format_;
  va_list args_;
  int assigned_ = 0;
};

}  // namespace plx::securec::input

#endif
