#include "fleet/worker.h"

#include <errno.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <plx/securec.h>
#include <signal.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <new>

#include "fleet/box.h"
#include "support/failure.h"

namespace plx::tool {
namespace {

void copy_text(char* to, size_t size, const std::string& text) {
  strncpy_s(to, size, text.c_str(), std::min(text.size(), size - 1));
}

// Rows are handed out by their number among those of the shard: whoever is free takes the next.
struct Counter {
  std::atomic<uint64_t> next{0};
};

Counter* make_shared_counter() {
  void* memory =
      mmap(nullptr, sizeof(Counter), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) system_failure("memory for the workers", errno);
  return new (memory) Counter;
}

void fill_report(const FleetPlan& plan, const SeenTable& seen, const Device& device,
                 Report* report) {
  report->row = device.row;
  copy_text(report->id, sizeof report->id, device.id);
  const uint64_t first = device.problem.empty() ? seen.first_row(device.id) : device.row;
  std::string problem = device.problem;
  if (first != device.row) problem = fmt::format("'{}' was given by row {}", device.id, first);
  if (!problem.empty()) {
    report->kind = Report::kBadRow;
    copy_text(report->text, sizeof report->text, problem);
    return;
  }
  const BoxResult box = make_box(plan, device);
  report->kind = box.kind;
  copy_text(report->factor_digest, sizeof report->factor_digest, box.factor_digest);
  copy_text(report->work_key_digest, sizeof report->work_key_digest, box.work_key_digest);
  copy_text(report->text, sizeof report->text, box.text);
}

bool send(int pipe, const Report& report) {
  ssize_t written;
  do {
    written = write(pipe, &report, sizeof report);
  } while (written < 0 && errno == EINTR);
  return written == static_cast<ssize_t>(sizeof report);
}

// What one worker does, from its start to its end.
bool work(const FleetPlan& plan, const SeenTable& seen, Counter* counter, int pipe) {
  Report report = {};
  try {
    DeviceReader reader(plan.list);
    Device device;
    uint64_t position = 0;
    for (uint64_t mine = counter->next++; reader.next(&device);) {
      if (!plan.shard.takes(device.id)) continue;
      if (position++ != mine) continue;
      report = {};
      fill_report(plan, seen, device, &report);
      if (!send(pipe, report) || report.kind == Report::kStopped) return false;
      mine = counter->next++;
    }
    return true;
  } catch (const std::exception& failure) {
    report.kind = Report::kStopped;
    copy_text(report.text, sizeof report.text, failure.what());
    send(pipe, report);
    return false;
  }
}

}  // namespace

std::string unfinished_box(const FleetPlan& plan, uint64_t row) {
  return fmt::format("{}/{}", plan.work_folder(), row);
}

Workers::Workers(const FleetPlan& plan, const SeenTable& seen) {
  static_assert(sizeof(Report) <= 4096, "a pipe takes this much in one piece");
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) system_failure("a pipe", errno);
  fcntl(ends[1], F_SETPIPE_SZ, 1 << 20);  // so that nobody waits while the disk is waited for
  pipe_ = ends[0];
  Counter* counter = make_shared_counter();
  fflush(stdout);
  fflush(stderr);
  for (unsigned i = 0; i < plan.jobs; ++i) {
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) system_failure("a worker", errno);
    if (child == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);  // no worker outlives the run
      close(ends[0]);
      if (getppid() != parent) _exit(1);
      _exit(work(plan, seen, counter, ends[1]) ? 0 : 1);
    }
    running_.push_back(child);
  }
  close(ends[1]);
  munmap(counter, sizeof *counter);
}

Workers::~Workers() {
  for (const pid_t worker : running_) {
    kill(worker, SIGKILL);
    waitpid(worker, nullptr, 0);
  }
  close(pipe_);
}

bool Workers::next(Report* report) {
  auto* to = reinterpret_cast<char*>(report);
  size_t filled = 0;
  while (filled < sizeof *report) {
    const ssize_t got = read(pipe_, to + filled, sizeof *report - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) system_failure("a worker", errno);
    if (got == 0) {
      wait_for_all();
      return false;
    }
    filled += static_cast<size_t>(got);
  }
  return true;
}

void Workers::wait_for_all() {
  bool died = false;
  for (const pid_t worker : running_) {
    int status = 0;
    waitpid(worker, &status, 0);
    died = died || status != 0;
  }
  running_.clear();
  if (died) {
    system_failure("a worker ended before its time", ECHILD, "run the same command again");
  }
}

}  // namespace plx::tool
