// The folder of what a run has not finished yet.
#ifndef PLX_TOOLS_FLEET_WORK_FOLDER_H
#define PLX_TOOLS_FLEET_WORK_FOLDER_H

#include <string>

namespace plx::tool {

// Makes the folder, or empties what a stopped run left there, and holds it against a second run of
// the same shard for as long as the object lives.
class WorkFolder {
 public:
  explicit WorkFolder(const std::string& path);
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  // Takes the folder away at the end of a finished run.
  void remove();

 private:
  bool lock_patiently() const;
  void remove_leftovers();

  std::string path_;
  int lock_;
};

}  // namespace plx::tool

#endif
