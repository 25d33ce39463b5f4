#include "fleet/device_list.h"

#include <errno.h>
#include <fmt/core.h>
#include <plx/digest.h>

#include <algorithm>

#include "keys/key_table.h"
#include "support/failure.h"
#include "support/file.h"

namespace plx::tool {
namespace {

constexpr size_t kLongestLine = 8192;

// The identifier names a folder too.
std::string problem_of(const std::string& id) {
  if (id.empty()) return "no identifier";
  if (id.size() >= kBoxIdLimit) {
    return fmt::format("an identifier of {} bytes; at most {} are possible", id.size(),
                       kBoxIdLimit - 1);
  }
  const bool control = std::any_of(id.begin(), id.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
  });
  if (control) return "a control byte in the identifier";
  if (id[0] == '.' || id.find('/') != std::string::npos) {
    return "an identifier that begins with '.' or holds '/' can name no folder";
  }
  return "";
}

}  // namespace

bool split_csv(const std::string& line, std::vector<std::string>* fields) {
  fields->assign(1, "");
  bool quoted = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quoted && c == '"') {
      if (i + 1 < line.size() && line[i + 1] == '"') {
        fields->back() += line[++i];
      } else {
        quoted = false;
      }
    } else if (!quoted && c == '"' && fields->back().empty()) {
      quoted = true;
    } else if (!quoted && c == ',') {
      fields->emplace_back();
    } else {
      fields->back() += c;
    }
  }
  return !quoted;
}

DeviceReader::DeviceReader(const std::string& path)
    : path_(path), folder_(folder_of(path)), file_(fopen(path.c_str(), "re")) {
  if (file_ == nullptr) system_failure(path, errno);
  read_header();
}

bool DeviceReader::read_line(std::string* line, bool* too_long) {
  line->clear();
  *too_long = false;
  int c;
  while ((c = getc_unlocked(file_.get())) != EOF && c != '\n') {
    if (line->size() < kLongestLine) {
      line->push_back(static_cast<char>(c));
    } else {
      *too_long = true;
    }
  }
  if (ferror(file_.get()) != 0) system_failure(path_, errno);
  if (c == EOF && line->empty()) return false;
  if (!line->empty() && line->back() == '\r') line->pop_back();
  ++row_;
  return true;
}

void DeviceReader::read_header() {
  std::string line;
  std::vector<std::string> names;
  bool too_long;
  const bool read = read_line(&line, &too_long);
  if (line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
  if (!read || !split_csv(line, &names)) names.clear();
  const auto id = std::find(names.begin(), names.end(), "stb_id");
  if (id == names.end()) {
    wrong_use(fmt::format("{}: no column 'stb_id' in the first line", path_),
              "the list is CSV; its first line names the columns stb_id and, where wanted, "
              "work_key_file");
  }
  id_column_ = static_cast<size_t>(id - names.begin());
  const auto work_key = std::find(names.begin(), names.end(), "work_key_file");
  if (work_key != names.end()) work_key_column_ = static_cast<size_t>(work_key - names.begin());
}

bool DeviceReader::next(Device* device) {
  std::string line;
  bool too_long;
  do {
    if (!read_line(&line, &too_long)) return false;
  } while (line.empty());
  *device = Device{};
  device->row = row_;
  std::vector<std::string> fields;
  if (too_long || !split_csv(line, &fields)) {
    device->problem = too_long ? "a line of more than 8192 bytes" : "a quote that is not closed";
    return true;
  }
  if (id_column_ < fields.size()) device->id = fields[id_column_];
  device->problem = problem_of(device->id);
  if (work_key_column_ < fields.size() && !fields[work_key_column_].empty()) {
    const std::string& file = fields[work_key_column_];
    device->work_key_file = file[0] == '/' ? file : folder_ + "/" + file;
  }
  return true;
}

bool Shard::takes(const std::string& id) const {
  if (count == 1) return true;
  unsigned char digest[32];
  sha256_get(digest, reinterpret_cast<const unsigned char*>(id.data()),
             static_cast<unsigned>(id.size()));
  uint64_t number = 0;
  for (int i = 0; i < 8; ++i) number = number << 8 | digest[i];
  return number % count == index - 1;
}

std::string Shard::suffix() const {
  return count == 1 ? "" : fmt::format("-{}-of-{}", index, count);
}

Shard parse_shard(const std::string& text) {
  const size_t slash = text.find('/');
  const auto number = [&](const std::string& digits) -> unsigned {
    const bool valid =
        !digits.empty() && digits.size() <= 6 &&
        std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    return valid ? static_cast<unsigned>(std::stoul(digits)) : 0;
  };
  Shard shard;
  if (slash != std::string::npos) {
    shard.index = number(text.substr(0, slash));
    shard.count = number(text.substr(slash + 1));
  }
  if (slash == std::string::npos || shard.index < 1 || shard.index > shard.count) {
    wrong_use(fmt::format("'{}' is no shard", text), "give i/n with i from 1 to n, such as 2/4");
  }
  return shard;
}

}  // namespace plx::tool
