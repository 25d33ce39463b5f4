// The debugging twin: a library to be preloaded into a program, in front of the real one.
//
// Each export passes its call on and looks at the result. A refusal becomes one line of the log;
// nothing that a caller passed in is ever logged but sizes. With PLX_DEBUG_FILL=1 the unused rest
// of each destination is filled, so that a caller who overstates a size is caught where it does so.
#ifndef PLX_TOOLS_DEBUG_TWIN_H
#define PLX_TOOLS_DEBUG_TWIN_H

#include <stddef.h>
#include <string.h>
#include <wchar.h>

#include <initializer_list>

namespace plx::twin {

// The real function behind the twin's. Ends the program when there is none, for no call could be
// passed on.
void* find_next(const char* symbol);

struct Size {
  const char* name;
  long long value;
};

// Writes "plxutility: FUNCTION refused: CODE, NAME=VALUE ..., caller ADDRESS SYMBOL (FILE)".
void log_refusal(const void* caller, const char* function, const char* code,
                 std::initializer_list<Size> sizes);

// The name of a code of the bounds-checked functions, or its number; "null" for pointers.
const char* code_name(long long code);
const char* code_name(const volatile void* result);

bool fills();
constexpr unsigned char kFill = 0xFE;

// Each fills the room of `size` bytes (or `count` characters) behind what is used.
void fill_bytes(void* dest, size_t size, size_t used);
void fill_text(char* dest, size_t size);
void fill_wide_bytes(wchar_t* dest, size_t count, size_t used);
void fill_wide_text(wchar_t* dest, size_t count);

}  // namespace plx::twin

#define PLX_SIZE(name) \
  ::plx::twin::Size { #name, static_cast < long long>(name) }

#define PLX_CALLER __builtin_extract_return_addr(__builtin_return_address(0))

// PLX_TWIN(result type, function, symbol, (parameters), (arguments), refused, code, (sizes), used):
// the twin of one function. `refused` and `code` are expressions over `result`; `used` is what is
// done after a call that was not refused.
#define PLX_TWIN_(Result, function, symbol, parameters, arguments, refused, code, sizes, used) \
  Result function parameters {                                                                 \
    static const auto next =                                                                   \
        reinterpret_cast<Result(*) parameters>(::plx::twin::find_next(symbol));                \
    Result const result = next arguments;                                                      \
    if (refused) {                                                                             \
      ::plx::twin::log_refusal(PLX_CALLER, #function, ::plx::twin::code_name(code),            \
                               {PLX_UNPACK sizes});                                            \
    } else if (::plx::twin::fills()) {                                                         \
      used;                                                                                    \
    }                                                                                          \
    return result;                                                                             \
  }
#define PLX_UNPACK(...) __VA_ARGS__
#define PLX_NOTHING static_cast<void>(0)

// Functions that answer with an errno_t.
#define PLX_TWIN_ERRNO(function, parameters, arguments, sizes, used) \
  PLX_TWIN_(errno_t, function, #function, parameters, arguments, result != 0, result, sizes, used)
// Functions that answer below 0.
#define PLX_TWIN_INT(function, symbol, parameters, arguments, sizes, used) \
  PLX_TWIN_(int, function, symbol, parameters, arguments, result < 0, result, sizes, used)

#endif
