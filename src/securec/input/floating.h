// Floating-point numbers: collecting their text, and storing the value.
#ifndef PLX_SRC_SECUREC_INPUT_FLOATING_H
#define PLX_SRC_SECUREC_INPUT_FLOATING_H

#include <langinfo.h>
#include <string.h>
#include <wchar.h>

#include "securec/input/conversion.h"
#include "securec/input/field.h"
#include "securec/input/number_text.h"
#include "securec/keep_errno.h"

namespace plx::securec::input {

// The locale's decimal point, for the platform's conversion expects that one and no other.
inline bool accept_point(Field<char>& field, const char* point) {
  for (; *point != '\0'; ++point) {
    if (!field.accept(*point)) return false;
  }
  return true;
}

inline bool accept_point(Field<wchar_t>& field, const char* point) {
  const KeepErrno keep_errno;
  mbstate_t state = {};
  wchar_t wide = 0;
  const size_t length = strlen(point);
  return mbrtowc(&wide, point, length, &state) == length && field.accept(wide);
}

// Collects the text of one number: [sign] digits [point digits] [exponent].
template <typename Char>
class NumberCollector {
 public:
  NumberCollector(Field<Char>& field, NumberText& text) : field_(field), text_(text) {}

  // Returns false when there is no number. An exponent without digits belongs to the number, which
  // is then the one before it.
  bool collect() {
    collect_sign();
    bool has_digit = collect_digits();
    if (collect_point()) has_digit = collect_digits() || has_digit;
    if (has_digit && field_.accept_either('e', 'E')) {
      put('e');
      collect_sign();
      collect_digits();
    }
    return has_digit && !text_.failed();
  }

 private:
  void put(char c) { text_.append(&c, &c + 1); }

  void collect_sign() {
    if (field_.accept('-')) {
      put('-');
    } else {
      field_.accept('+');
    }
  }

  bool collect_digits() {
    bool has_digit = false;
    const Char* stop;
    do {
      const Run<Char> run = field_.run();
      for (stop = run.at(); stop != run.end() && digit_value(*stop) < 10;) ++stop;
      if (!text_.append(run.at(), stop)) return false;
      has_digit = has_digit || stop != run.at();
    } while (field_.take_until(stop));
    return has_digit;
  }

  bool collect_point() {
#ifdef __ANDROID__  // has one locale's point, and nl_langinfo only since Android 8
    const char* point = ".";
#else
    const char* point = nl_langinfo(RADIXCHAR);
#endif
    if (!accept_point(field_, point)) return false;
    text_.append(point, point + strlen(point));
    return true;
  }

  Field<Char>& field_;
  NumberText& text_;
};

template <typename Char>
bool read_floating(Field<Char> field, double* out) {
  NumberText text;
  if (!NumberCollector<Char>(field, text).collect()) return false;
  *out = text.to_double();
  return true;
}

inline void store_floating(void* dst, const Conversion& conversion, double value) {
  if (conversion.level >= Conversion::kLongDoubleLevel) {
    *static_cast<long double*>(dst) = value;
  } else if (conversion.level == Conversion::kLongLevel) {
    *static_cast<double*>(dst) = value;
  } else {
    *static_cast<float*>(dst) = static_cast<float>(value);
  }
}

}  // namespace plx::securec::input

#endif
