// The two key files of one box.
#ifndef PLX_TOOLS_FLEET_BOX_H
#define PLX_TOOLS_FLEET_BOX_H

#include <string>

#include "fleet/worker.h"

namespace plx::tool {

struct BoxResult {
  Report::Kind kind;
  std::string factor_digest;
  std::string work_key_digest;
  std::string text;
};

// Makes the box's files in its unfinished folder, or finds that they are there already.
BoxResult make_box(const FleetPlan& plan, const Device& device);

}  // namespace plx::tool

#endif
