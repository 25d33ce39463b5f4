// Key files for a whole fleet of boxes.
//
//   OUT/fleet                       the fingerprint of the secrets that all was made with
//   OUT/shared/system/etc/...       the four keys that are the same on every box
//   OUT/boxes/ID/f, OUT/boxes/ID/w  the two files of one box
//   OUT/manifest[-i-of-n]           the SHA-256 of each file, as sha256sum checks it
//   OUT/.work[-i-of-n]/             what is not finished; gone at the end of a run
#ifndef PLX_TOOLS_FLEET_FLEET_H
#define PLX_TOOLS_FLEET_FLEET_H

#include <string>

#include "fleet/device_list.h"
#include "keys/provision.h"

namespace plx::tool {

struct FleetPlan {
  std::string list;
  std::string out;
  Shard shard;
  unsigned jobs = 1;
  bool dry_run = false;  // reads and judges the rows, derives nothing, writes nothing
  KeyRecipe recipe;

  std::string work_folder() const { return out + "/.work" + shard.suffix(); }
  std::string box_folder(const std::string& id) const { return out + "/boxes/" + id; }
  std::string manifest() const { return out + "/manifest" + shard.suffix(); }
};

// Makes what is missing of the plan. Ends the command when a row was bad (after all others) or when
// the system refuses (at once; the same plan goes on from there).
void provision_fleet(const FleetPlan& plan);

}  // namespace plx::tool

#endif
