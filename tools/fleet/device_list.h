// The list of a fleet's boxes: a CSV file, read row by row.
#ifndef PLX_TOOLS_FLEET_DEVICE_LIST_H
#define PLX_TOOLS_FLEET_DEVICE_LIST_H

#include <stdint.h>
#include <stdio.h>

#include <memory>
#include <string>
#include <vector>

namespace plx::tool {

struct Device {
  uint64_t row = 0;  // line of the file, from 1
  std::string id;
  std::string work_key_file;  // empty: a generated work key
  std::string problem;        // why the row cannot be used
};

// Splits one line of CSV (RFC 4180, fields within one line). False when a quote is not closed.
bool split_csv(const std::string& line, std::vector<std::string>* fields);

// Reads a list with the columns "stb_id" and, where wanted, "work_key_file", in any order and
// among others. Paths of work-key files start at the list's folder. Holds one row at a time.
class DeviceReader {
 public:
  explicit DeviceReader(const std::string& path);
  bool next(Device* device);  // false at the end of the list

 private:
  bool read_line(std::string* line, bool* too_long);
  void read_header();

  struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
  };
  std::string path_;
  std::string folder_;
  std::unique_ptr<FILE, CloseFile> file_;
  uint64_t row_ = 0;
  size_t id_column_ = 0;
  size_t work_key_column_ = SIZE_MAX;
};

// A part of a fleet: the boxes whose identifiers fall to `index` of `count`. Equal identifiers fall
// to the same part, so that a part finds its duplicates by itself.
struct Shard {
  unsigned index = 1;
  unsigned count = 1;
  bool takes(const std::string& id) const;
  bool makes_shared_keys() const { return index == 1; }
  std::string suffix() const;  // "-2-of-4", or nothing for the only one
};

Shard parse_shard(const std::string& text);

}  // namespace plx::tool

#endif
