// Lists of digests, as sha256sum and md5sum write and read them.
#ifndef PLX_TOOLS_DIGEST_CHECK_LIST_H
#define PLX_TOOLS_DIGEST_CHECK_LIST_H

#include <stddef.h>

#include <optional>
#include <string>

namespace plx::tool {

// "DIGEST  NAME"; a name with a line end or a backslash is escaped, and the line then starts with
// a backslash.
std::string list_line(const std::string& digest, const std::string& name);

struct ListedDigest {
  std::string digest;  // lower case
  std::string name;
};

// Takes a line without its line end: the form above, with " *" instead of two spaces as well, or
// "NAME (FILE) = DIGEST" with `tag` as NAME. Nothing for a line of another form.
std::optional<ListedDigest> parse_list_line(std::string line, size_t digits, const char* tag);

}  // namespace plx::tool

#endif
