// Twins of the formatting and scanning functions. Those with a list of their own arguments pass it
// on to the form that takes one.
#include <plx/securec.h>
#include <stdarg.h>

#include "twin.h"

using plx::twin::fill_text;
using plx::twin::fill_wide_text;

extern "C" {

PLX_TWIN_INT(vsprintf_s, "vsprintf_s",
             (char* dest, size_t destMax, const char* format, va_list args),
             (dest, destMax, format, args), (PLX_SIZE(destMax)), fill_text(dest, destMax))
PLX_TWIN_INT(vsnprintf_s, "vsnprintf_s",
             (char* dest, size_t destMax, size_t count, const char* format, va_list args),
             (dest, destMax, count, format, args), (PLX_SIZE(destMax), PLX_SIZE(count)),
             fill_text(dest, destMax))
PLX_TWIN_INT(vswprintf_s, "vswprintf_s",
             (wchar_t * dest, size_t destMax, const wchar_t* format, va_list args),
             (dest, destMax, format, args), (PLX_SIZE(destMax)), fill_wide_text(dest, destMax))
PLX_TWIN_INT(securec_output_s, "securec_output_s",
             (SecurecOutputStream * stream, const char* format, va_list args),
             (stream, format, args), (), PLX_NOTHING)
PLX_TWIN_INT(securec_woutput_s, "securec_woutput_s",
             (SecurecWideOutputStream * stream, const wchar_t* format, va_list args),
             (stream, format, args), (), PLX_NOTHING)

PLX_TWIN_INT(vsscanf_s, "vsscanf_s", (const char* buffer, const char* format, va_list args),
             (buffer, format, args), (), PLX_NOTHING)
PLX_TWIN_INT(vswscanf_s, "vswscanf_s", (const wchar_t* buffer, const wchar_t* format, va_list args),
             (buffer, format, args), (), PLX_NOTHING)
PLX_TWIN_INT(vscanf_s, "vscanf_s", (const char* format, va_list args), (format, args), (),
             PLX_NOTHING)
PLX_TWIN_INT(vwscanf_s, "vwscanf_s", (const wchar_t* format, va_list args), (format, args), (),
             PLX_NOTHING)
PLX_TWIN_INT(vfscanf_s, "vfscanf_s", (FILE * stream, const char* format, va_list args),
             (stream, format, args), (), PLX_NOTHING)
PLX_TWIN_INT(vfwscanf_s, "vfwscanf_s", (FILE * stream, const wchar_t* format, va_list args),
             (stream, format, args), (), PLX_NOTHING)

// PLX_TWIN_LIST(function, real form, its type, (parameters), last parameter, (arguments), (sizes),
// used): a function that ends in "...".
#define PLX_TWIN_LIST(function, list_form, Form, parameters, last, arguments, sizes, used) \
  int function parameters {                                                                \
    static const auto next = reinterpret_cast<Form>(::plx::twin::find_next(list_form));    \
    va_list args;                                                                          \
    va_start(args, last);                                                                  \
    const int result = next arguments;                                                     \
    va_end(args);                                                                          \
    if (result < 0) {                                                                      \
      ::plx::twin::log_refusal(PLX_CALLER, #function, ::plx::twin::code_name(result),      \
                               {PLX_UNPACK sizes});                                        \
    } else if (::plx::twin::fills()) {                                                     \
      used;                                                                                \
    }                                                                                      \
    return result;                                                                         \
  }

PLX_TWIN_LIST(sprintf_s, "vsprintf_s", decltype(&vsprintf_s),
              (char* dest, size_t destMax, const char* format, ...), format,
              (dest, destMax, format, args), (PLX_SIZE(destMax)), fill_text(dest, destMax))
PLX_TWIN_LIST(snprintf_s, "vsnprintf_s", decltype(&vsnprintf_s),
              (char* dest, size_t destMax, size_t count, const char* format, ...), format,
              (dest, destMax, count, format, args), (PLX_SIZE(destMax), PLX_SIZE(count)),
              fill_text(dest, destMax))
PLX_TWIN_LIST(swprintf_s, "vswprintf_s", decltype(&vswprintf_s),
              (wchar_t * dest, size_t destMax, const wchar_t* format, ...), format,
              (dest, destMax, format, args), (PLX_SIZE(destMax)), fill_wide_text(dest, destMax))

PLX_TWIN_LIST(sscanf_s, "vsscanf_s", decltype(&vsscanf_s),
              (const char* buffer, const char* format, ...), format, (buffer, format, args), (),
              PLX_NOTHING)
PLX_TWIN_LIST(swscanf_s, "vswscanf_s", decltype(&vswscanf_s),
              (const wchar_t* buffer, const wchar_t* format, ...), format, (buffer, format, args),
              (), PLX_NOTHING)
PLX_TWIN_LIST(scanf_s, "vscanf_s", decltype(&vscanf_s), (const char* format, ...), format,
              (format, args), (), PLX_NOTHING)
PLX_TWIN_LIST(wscanf_s, "vwscanf_s", decltype(&vwscanf_s), (const wchar_t* format, ...), format,
              (format, args), (), PLX_NOTHING)
PLX_TWIN_LIST(fscanf_s, "vfscanf_s", decltype(&vfscanf_s), (FILE * stream, const char* format, ...),
              format, (stream, format, args), (), PLX_NOTHING)
PLX_TWIN_LIST(fwscanf_s, "vfwscanf_s", decltype(&vfwscanf_s),
              (FILE * stream, const wchar_t* format, ...), format, (stream, format, args), (),
              PLX_NOTHING)

}  // extern "C"
