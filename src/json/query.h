// The queries that the rest of the library makes, with the contracts of plx/json.h.
#ifndef PLX_SRC_JSON_QUERY_H
#define PLX_SRC_JSON_QUERY_H

#include <plx/json.h>

namespace plx::json {

// The value of the first member called `name` anywhere below `value`, in the order of the text;
// null when there is none, and for null arguments.
PLX_JsonValue* find(const PLX_JsonValue* value, const char* name);

// The text of a string value; null for null and for containers.
const char* text_of(const PLX_JsonValue* value);

}  // namespace plx::json

#endif
