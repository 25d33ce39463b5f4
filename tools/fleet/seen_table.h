// Which row gave an identifier first. Lies in a file without a name, so that a list of any length
// costs no memory; the processes of a run share it.
#ifndef PLX_TOOLS_FLEET_SEEN_TABLE_H
#define PLX_TOOLS_FLEET_SEEN_TABLE_H

#include <stdint.h>

#include <string>

namespace plx::tool {

class SeenTable {
 public:
  // Makes the file in `folder`, for at most `most` identifiers.
  SeenTable(const std::string& folder, uint64_t most);
  ~SeenTable();
  SeenTable(const SeenTable&) = delete;
  SeenTable& operator=(const SeenTable&) = delete;

  // Notes that `row` gives `id`, unless an earlier row did.
  void note(const std::string& id, uint64_t row);
  uint64_t first_row(const std::string& id) const;

 private:
  struct Slot {
    uint64_t key[2];
    uint64_t row;  // 0: free
  };
  uint64_t find(const std::string& id, Slot* slot) const;

  int fd_;
  uint64_t slots_;
};

}  // namespace plx::tool

#endif
