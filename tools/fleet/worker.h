// The processes that derive keys. The box identifier is one for the whole process, so boxes are
// made in parallel by processes, not by threads.
#ifndef PLX_TOOLS_FLEET_WORKER_H
#define PLX_TOOLS_FLEET_WORKER_H

#include <stdint.h>
#include <sys/types.h>

#include <atomic>
#include <vector>

#include "fleet/fleet.h"
#include "fleet/seen_table.h"

namespace plx::tool {

// What a worker tells of one row. Written to the pipe in one piece.
struct Report {
  enum Kind : uint32_t {
    kMade,     // the box stands in the work folder, complete
    kKept,     // it was there already
    kBadRow,   // `text` says why the row cannot be used
    kStopped,  // `text` says why nothing more can be made
  };
  uint64_t row;
  Kind kind;
  char id[64];
  char factor_digest[65];  // hexadecimal, with terminator
  char work_key_digest[65];
  char text[300];
};

// The folder in which the box of a row is made.
std::string unfinished_box(const FleetPlan& plan, uint64_t row);

class Workers {
 public:
  // Forks the plan's number of processes.
  Workers(const FleetPlan& plan, const SeenTable& seen);
  ~Workers();  // ends those that still run
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // The next report; false when all workers have ended. Ends the command when one died.
  bool next(Report* report);

 private:
  void wait_for_all();

  int pipe_ = -1;
  std::vector<pid_t> running_;
};

}  // namespace plx::tool

#endif
