#include "support/progress.h"

#include <fmt/core.h>
#include <stdio.h>
#include <unistd.h>

#include <utility>

namespace plx::tool {

Progress::Progress(std::string label, uint64_t total, Unit unit, bool long_enough)
    : label_(std::move(label)),
      total_(total),
      unit_(unit),
      shown_(long_enough),
      terminal_(isatty(STDERR_FILENO) != 0),
      start_(Clock::now()),
      last_(start_) {}

Progress::~Progress() { clear(); }

void Progress::clear() {
  if (drawn_) fmt::print(stderr, "\r\033[K");
  drawn_ = false;
}

void Progress::update(uint64_t done) {
  if (!shown_) return;
  const Clock::time_point now = Clock::now();
  const auto interval = terminal_ ? std::chrono::milliseconds(200) : std::chrono::minutes(1);
  if (now - last_ < interval) return;
  last_ = now;
  const std::string line = describe(done, std::chrono::duration<double>(now - start_).count());
  if (terminal_) {
    fmt::print(stderr, "\r{}\033[K", line);
    fflush(stderr);
    drawn_ = true;
  } else {
    fmt::print(stderr, "{}\n", line);
  }
}

std::string Progress::describe(uint64_t done, double seconds) const {
  const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
  std::string line = unit_ == Unit::kBytes
                         ? fmt::format("{}: {}, {}/s", label_, size_text(static_cast<double>(done)),
                                       size_text(rate))
                         : fmt::format("{}: {} of {}, {:.0f}/s", label_, done, total_, rate);
  if (total_ != 0 && rate > 0) {
    const double left = static_cast<double>(total_ - (done < total_ ? done : total_)) / rate;
    line += fmt::format(", {:.0f} %, {} left",
                        100.0 * static_cast<double>(done) / static_cast<double>(total_),
                        duration_text(left));
  }
  return line;
}

std::string size_text(double bytes) {
  const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
  size_t unit = 0;
  for (; bytes >= 1024 && unit + 1 < sizeof units / sizeof *units; ++unit) bytes /= 1024;
  return fmt::format(unit == 0 ? "{:.0f} {}" : "{:.1f} {}", bytes, units[unit]);
}

std::string duration_text(double seconds) {
  const long whole = static_cast<long>(seconds + 0.5);
  if (whole >= 3600) {
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
  }
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace plx::tool
