// Files as the tool reads and writes them: whole, and never half-written under a final name.
#ifndef PLX_TOOLS_SUPPORT_FILE_H
#define PLX_TOOLS_SUPPORT_FILE_H

#include <stddef.h>
#include <sys/types.h>

#include <string>
#include <string_view>

namespace plx::tool {

// Who a new file belongs to, and what may be done with it.
struct Access {
  mode_t mode = 0600;
  uid_t user = static_cast<uid_t>(-1);  // -1: as it comes
  gid_t group = static_cast<gid_t>(-1);
};

// Both end the command with a message when there is no such mode or owner.
mode_t parse_mode(const std::string& text);
void parse_owner(const std::string& text, Access* access);  // USER, USER:GROUP or :GROUP

// A file that appears under its name complete or not at all: written beside it under a temporary
// name, synchronised, given mode and owner, renamed. Not committed, it vanishes.
class AtomicFile {
 public:
  AtomicFile(const std::string& path, const Access& access);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  void write(std::string_view data);
  // Makes the data durable; until commit() they stand under temporary_path().
  void finish();
  void commit();
  const std::string& temporary_path() const { return temporary_; }

 private:
  std::string path_;
  std::string temporary_;
  int fd_ = -1;
};

// Writes a file that is not yet under its final name: mode, owner, and no synchronisation of its
// own. Used by those who synchronise many at once.
void write_new_file(const std::string& path, std::string_view data, const Access& access);

// Makes every missing folder of a path.
void make_folders(const std::string& path);
std::string folder_of(const std::string& path);
// Makes a rename in this folder durable.
void sync_folder(const std::string& path);
// Gives a finished file or folder its final name, durably.
void move_into_place(const std::string& from, const std::string& to);
bool exists(const std::string& path);

// Reads a whole file, or standard input for "-". Files above `limit` bytes are refused.
std::string read_whole(const std::string& source, size_t limit);
// How a source is called in messages.
std::string name_of(const std::string& source);

constexpr size_t kLargestInput = 0x7FFFFFFF;

}  // namespace plx::tool

#endif
