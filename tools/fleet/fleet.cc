#include "fleet/fleet.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "digest/compute.h"
#include "fleet/manifest.h"
#include "fleet/work_folder.h"
#include "fleet/worker.h"
#include "keys/fingerprint.h"
#include "keys/key_table.h"
#include "support/failure.h"
#include "support/file.h"
#include "support/progress.h"

namespace plx::tool {
namespace {

// How much may have to be made again after a run was stopped.
constexpr size_t kLargestBatch = 1024;
constexpr std::chrono::milliseconds kLongestBatch(250);

struct Tally {
  uint64_t made = 0, kept = 0, bad = 0;
  uint64_t total() const { return made + kept + bad; }
};

uint64_t count_rows(const FleetPlan& plan) {
  DeviceReader reader(plan.list);
  uint64_t rows = 0;
  for (Device device; reader.next(&device);) rows += plan.shard.takes(device.id) ? 1 : 0;
  return rows;
}

void note_rows(const FleetPlan& plan, SeenTable* seen) {
  DeviceReader reader(plan.list);
  for (Device device; reader.next(&device);) {
    if (device.problem.empty() && plan.shard.takes(device.id)) seen->note(device.id, device.row);
  }
}

// All runs into one folder must have been built with the same secrets.
void require_same_secrets(const FleetPlan& plan, const std::string& fingerprint) {
  const std::string path = plan.out + "/fleet";
  const std::string content = "secrets " + fingerprint + "\n";
  if (!exists(path)) {
    const std::string unfinished = plan.work_folder() + "/fleet";
    Access access;
    access.mode = 0644;
    AtomicFile file(unfinished, access);
    file.write(content);
    file.commit();
    move_into_place(unfinished, path);
  } else if (read_whole(path, 4096) != content) {
    refuse(fmt::format("{}: made with other secrets than those of this library", plan.out),
           "use the library that began it, or another folder");
  }
}

// Makes all that stands below `folder` durable. One call for a whole batch: three synchronisations
// of its own cost a box many times what its key derivation does.
void sync_all_below(const std::string& folder) {
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) system_failure(folder, errno);
  const bool synchronised = syncfs(fd) == 0;
  const int error = errno;
  close(fd);
  if (!synchronised) system_failure(folder, error);
}

// The shared keys become one folder that appears when all of it is there.
void make_shared_keys(const FleetPlan& plan, Manifest* manifest) {
  const std::string root = plan.out + "/shared";
  const std::string unfinished = plan.work_folder() + "/shared";
  const bool begun = exists(root);
  const std::string& place = begun ? root : unfinished;
  make_folders(place);
  use_root(place);
  for (int index = 0; index < kKeyCount; ++index) {
    if (index == kBoxKey) continue;
    provision_key(index, plan.recipe);
    const KeyPaths paths = key_paths(index);
    for (const std::string& path : {paths.factor, paths.work_key}) {
      manifest->add(sha256_of(path), "shared" + path.substr(place.size()));
    }
  }
  if (begun) return;
  sync_all_below(unfinished);
  move_into_place(unfinished, root);
}

// Gives finished boxes their names, once they are on the disk.
void settle(const FleetPlan& plan, const std::vector<Report>& batch, Manifest* manifest) {
  if (manifest == nullptr || batch.empty()) return;
  sync_all_below(plan.work_folder());
  for (const Report& report : batch) {
    if (report.kind != Report::kMade) continue;
    const std::string box = plan.box_folder(report.id);
    if (rename(unfinished_box(plan, report.row).c_str(), box.c_str()) != 0) {
      system_failure(box, errno);
    }
  }
  sync_folder(plan.out + "/boxes");
  for (const Report& report : batch) {
    const std::string box = fmt::format("boxes/{}/", report.id);
    manifest->add(report.factor_digest, box + "f");
    manifest->add(report.work_key_digest, box + "w");
  }
}

// Runs the workers to their end and settles what they make.
Tally run_workers(const FleetPlan& plan, const SeenTable& seen, uint64_t rows, Manifest* manifest) {
  Tally tally;
  Progress progress("boxes", rows, Progress::Unit::kBoxes, true);
  Workers workers(plan, seen);
  std::vector<Report> batch;
  auto settled = std::chrono::steady_clock::now();
  for (Report report; workers.next(&report);) {
    switch (report.kind) {
      case Report::kStopped:
        settle(plan, batch, manifest);
        system_failure_text(report.text,
                            fmt::format("{} boxes are finished; the same command goes on from here",
                                        tally.made + tally.kept));
      case Report::kBadRow:
        ++tally.bad;
        progress.clear();
        fmt::print(stderr, "plxutil: {}: row {}: {}\n", plan.list, report.row, report.text);
        break;
      default:
        ++(report.kind == Report::kMade ? tally.made : tally.kept);
        batch.push_back(report);
    }
    if (batch.size() == kLargestBatch ||
        std::chrono::steady_clock::now() - settled >= kLongestBatch) {
      settle(plan, batch, manifest);
      batch.clear();
      settled = std::chrono::steady_clock::now();
    }
    progress.update(tally.total());
  }
  settle(plan, batch, manifest);
  return tally;
}

void report_tally(const FleetPlan& plan, const Tally& tally, double seconds) {
  fmt::print(
      "{} rows{}: {} boxes {}, {} there before, {} bad; {:.1f} s, {:.0f} boxes/s\n", tally.total(),
      plan.shard.count == 1 ? ""
                            : fmt::format(" of shard {}/{}", plan.shard.index, plan.shard.count),
      tally.made, plan.dry_run ? "to make" : "made", tally.kept, tally.bad, seconds,
      seconds > 0 ? static_cast<double>(tally.made) / seconds : 0);
  if (tally.bad != 0) {
    refuse(fmt::format("{} of {} rows are bad; all others are done", tally.bad, tally.total()),
           "correct these rows and run the same command again");
  }
}

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

void provision_fleet(const FleetPlan& plan) {
  const auto start = std::chrono::steady_clock::now();
  const uint64_t rows = count_rows(plan);
  if (plan.dry_run) {
    const char* folder = getenv("TMPDIR");
    SeenTable seen(folder != nullptr && *folder != '\0' ? folder : "/tmp", rows);
    note_rows(plan, &seen);
    report_tally(plan, run_workers(plan, seen, rows, nullptr), seconds_since(start));
    return;
  }
  const std::string fingerprint = secrets_fingerprint();
  make_folders(plan.out + "/boxes");
  WorkFolder work(plan.work_folder());
  require_same_secrets(plan, fingerprint);
  Tally tally;
  {
    SeenTable seen(plan.work_folder(), rows);
    note_rows(plan, &seen);
    Manifest manifest(plan.work_folder(), fingerprint);
    if (plan.shard.makes_shared_keys()) make_shared_keys(plan, &manifest);
    tally = run_workers(plan, seen, rows, &manifest);
    manifest.publish(plan.manifest());
  }
  work.remove();
  report_tally(plan, tally, seconds_since(start));
}

}  // namespace plx::tool
