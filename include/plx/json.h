/* JSON: a lenient reader and queries over the tree that it builds.
 *
 * PLX_ParseJsonString turns a text that begins with '[' or '{' into a tree of heap records. Every
 * scalar (string, number, true, false, null) is kept as text and converted on demand. The tree is
 * read-only; there is no writer.
 *
 * Two kinds of handle are in play. A value (PLX_JsonValue) is a node with a kind tag; a body
 * (PLX_JsonObject, PLX_JsonArray) is what the `data` of an object or array value points to. The
 * PLX_JsonObject..., PLX_JsonArray... and ...Count functions take bodies, all others take values.
 *
 * Shared rules:
 *  - Queries allocate nothing and change nothing. Every pointer they return points into the tree
 *    and lives as long as it.
 *  - Null arguments are misses: the result is what the function returns for "not there". The one
 *    exception is the out pointer of PLX_FindNumberFromJsonValue.
 *  - Nothing is logged. A failed parse gives null, without a code or a position.
 *  - No function keeps state. Any number of threads may query one tree at once; parsing and
 *    freeing concern one tree alone.
 *
 * The dialect is RFC 8259 with these differences:
 *  - The text starts with '[' or '{', with no white space before it; what follows the bracket that
 *    closes the root is ignored.
 *  - Strings and names may stand in single quotes, and \' is an escape.
 *  - Strings and names may stand without quotes. Such a token runs up to NUL , : ' " { } [ ] or a
 *    space. Its escapes are those of a quoted string, and a control byte fails it as well, but it
 *    need be no number or word: 12abc, tru and hello are values like 12 and true. Of white space
 *    only the space ends it: a tab or line end directly behind a token fails the parse, so a
 *    pretty-printed number needs its comma, a bracket or a space behind it.
 *  - White space is that of the C locale's isspace: vertical tab and form feed as well.
 *  - A quoted string must not be the last thing in the text.
 *  - When a quoted string holds a bad escape or a control byte, a token directly behind its closing
 *    quote takes its place: ["\x"abc] is one string, abc.
 *  - \u writes its 16-bit unit as UTF-8 of one to three bytes. The halves of a surrogate pair are
 *    not combined. \u0000 ends the string; what stands behind it is checked and dropped.
 *  - Bytes from 0x80 are not checked to be UTF-8.
 *  - At most 480 members or elements in one container, at most 16 levels: values stand at depths 0
 *    (the root) to 15, so 16 nested empty brackets parse, but nothing fits into the innermost.
 *  - Two equal names in one object fail the parse. Names are compared byte by byte.
 */
#ifndef PLX_JSON_H
#define PLX_JSON_H

#include <plx/export.h>
#include <stddef.h>
#include <stdint.h>

PLX_BEGIN_DECLS

/* ---- Records -------------------------------------------------------------------------------- */

/* Kinds of a value. The numbers are part of the interface. */
enum {
  PLX_JSON_STRING = 1, /* data: char*, the NUL-terminated text of any scalar */
  PLX_JSON_OBJECT = 2, /* data: PLX_JsonObject* */
  PLX_JSON_ARRAY = 3   /* data: PLX_JsonArray* */
};

/* One node of the tree. */
typedef struct PLX_JsonValue {
  uint32_t type; /* PLX_JSON_STRING, PLX_JSON_OBJECT or PLX_JSON_ARRAY */
  void* data;    /* as the kind says */
} PLX_JsonValue;

/* The body of an object: its members in the order of the text. Names are unique. */
typedef struct PLX_JsonObject {
  int32_t count;          /* number of members */
  uint32_t capacity;      /* slots in each array; equals count */
  char** names;           /* unescaped; null when there are none */
  PLX_JsonValue** values; /* parallel to names */
} PLX_JsonObject;

/* The body of an array: its elements in the order of the text. */
typedef struct PLX_JsonArray {
  int32_t count;         /* number of elements */
  uint32_t capacity;     /* slots; equals count */
  PLX_JsonValue** items; /* null when there are none */
} PLX_JsonArray;

/* ---- Building and releasing ----------------------------------------------------------------- */

/* PLX_ParseJsonString returns the tree of `text`, to be released with PLX_FreeJsonValue, or null
 * when `text` is null, is not of the dialect, or memory is short. No byte behind the terminator
 * decides anything, nor any behind the bracket that closes the root. A failed parse releases what
 * it had built, with one exception: when an array has no room for one more element (the 481st, or
 * memory is short), that element's record is released, but what hangs below it is lost. */
PLX_API PLX_JsonValue* PLX_ParseJsonString(const char* text) PLX_CHECK_RESULT;

/* PLX_FreeJsonValue releases `value` and everything below it. Null is ignored. Only the root of a
 * tree may be given. */
PLX_API void PLX_FreeJsonValue(PLX_JsonValue* value);

/* ---- Bodies --------------------------------------------------------------------------------- */

/* PLX_JsonGetArrayCount returns the number of elements; PLX_JsonGetObjectCount the number of
 * members. 0 for null. They are one function, which counts either body. */
PLX_API int PLX_JsonGetArrayCount(const PLX_JsonArray* array);
PLX_API int PLX_JsonGetObjectCount(const PLX_JsonObject* object);

/* PLX_JsonObjectGetValueByName returns the value of the member called `name`, case-sensitively, or
 * null. It does not look into the values; PLX_FindFromJsonValue does. */
PLX_API PLX_JsonValue* PLX_JsonObjectGetValueByName(const PLX_JsonObject* object, const char* name);

/* PLX_JsonObjectGetValueByIndex returns the value of member `index`, counted from 0 in the order
 * of the text, or null when `index` is negative or too large. */
PLX_API PLX_JsonValue* PLX_JsonObjectGetValueByIndex(const PLX_JsonObject* object, int index);

/* PLX_JsonArrayGetValueByIndex returns element `index`; PLX_JsonObjectGetStringByIndex the name of
 * member `index`. Null when `index` is negative or too large. They are one function, which returns
 * a slot of the first slot array of either body. */
PLX_API PLX_JsonValue* PLX_JsonArrayGetValueByIndex(const PLX_JsonArray* array, int index);
PLX_API const char* PLX_JsonObjectGetStringByIndex(const PLX_JsonObject* object, int index);

/* ---- Search --------------------------------------------------------------------------------- */

/* PLX_FindFromJsonValue returns the value of the first member called `name` anywhere below
 * `value`, or null. The search runs depth-first in the order of the text, and a member's own name
 * is tested before its value is searched: in {"a":{"b":1},"b":2} the name b finds 1. Elements of
 * arrays have no names, but are searched. A string value is never searched. */
PLX_API PLX_JsonValue* PLX_FindFromJsonValue(const PLX_JsonValue* value, const char* name);

/* PLX_FindFromJsonValueiCase is the same search with the letters A to Z and a to z taken as
 * equal. */
PLX_API PLX_JsonValue* PLX_FindFromJsonValueiCase(const PLX_JsonValue* value, const char* name);

/* These make the search of PLX_FindFromJsonValue and then look at the kind of what was found. Only
 * the first match counts: when it is of the wrong kind the result is null, even if a later member
 * of that name has the right one. */
PLX_API const char* PLX_FindStringFromJsonValue(const PLX_JsonValue* value, const char* name);
PLX_API PLX_JsonObject* PLX_FindObjectFromJsonValue(const PLX_JsonValue* value, const char* name);
PLX_API PLX_JsonArray* PLX_FindArrayFromJsonValue(const PLX_JsonValue* value, const char* name);

/* PLX_FindNumberFromJsonValue stores the number that the first member called `name` starts with in
 * `*out` and returns 0, or returns -1, with `*out` untouched, when there is no such member or its
 * value is no string. The text is converted by strtod and not checked: "abc" stores 0.0 and
 * returns 0. `out` must not be null. */
PLX_API int PLX_FindNumberFromJsonValue(const PLX_JsonValue* value, const char* name,
                                        double* out) PLX_CHECK_RESULT;

/* ---- Conversion of one value ---------------------------------------------------------------- */

/* PLX_GetJsonValueString returns the text of a string value (any scalar), else null. */
PLX_API const char* PLX_GetJsonValueString(const PLX_JsonValue* value);

/* PLX_GetJsonValueNumber returns the number that the text of a string value starts with, converted
 * by strtod, so by the rules of the current locale; 0.0 where there is no number and for every
 * other value. */
PLX_API double PLX_GetJsonValueNumber(const PLX_JsonValue* value);

/* PLX_GetJsonValueBoolean returns 0 for a string value that starts with false, False or FALSE, 1
 * for one that starts with true, True or TRUE, and -1 for everything else. It looks at the prefix
 * only: falsey is 0. The digits 0 and 1 are -1. */
PLX_API int PLX_GetJsonValueBoolean(const PLX_JsonValue* value);

/* PLX_GetJsonValueArray returns the body of an array value, else null; PLX_GetJsonValueObject that
 * of an object value, else null. */
PLX_API PLX_JsonArray* PLX_GetJsonValueArray(const PLX_JsonValue* value);
PLX_API PLX_JsonObject* PLX_GetJsonValueObject(const PLX_JsonValue* value);

PLX_END_DECLS

#endif
