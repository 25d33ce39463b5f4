// The list of what a run made: a list of digests, as sha256sum checks it, and in a comment the
// fingerprint of the secrets. The lists of several shards make one when they are joined.
#ifndef PLX_TOOLS_FLEET_MANIFEST_H
#define PLX_TOOLS_FLEET_MANIFEST_H

#include <string>

#include "support/file.h"

namespace plx::tool {

class Manifest {
 public:
  // Collects in `folder`; publish() gives the list its name.
  Manifest(const std::string& folder, const std::string& fingerprint);
  void add(const std::string& digest, const std::string& name);
  void publish(const std::string& path);

 private:
  std::string unfinished_;
  AtomicFile file_;
  std::string lines_;
};

}  // namespace plx::tool

#endif
