// Tells how far a long piece of work has come: a line that is drawn again and again on a terminal,
// one line a minute elsewhere.
#ifndef PLX_TOOLS_SUPPORT_PROGRESS_H
#define PLX_TOOLS_SUPPORT_PROGRESS_H

#include <stdint.h>

#include <chrono>
#include <string>

namespace plx::tool {

constexpr uint64_t kLongFile = uint64_t{64} << 20;  // larger files show their progress

class Progress {
 public:
  enum class Unit { kBytes, kBoxes };
  // `total` 0 stands for unknown. Work that is not `long_enough` shows nothing.
  Progress(std::string label, uint64_t total, Unit unit, bool long_enough);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(uint64_t done);
  // Takes the drawn line away, so that a message can stand in its place.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;
  std::string describe(uint64_t done, double seconds) const;

  std::string label_;
  uint64_t total_;
  Unit unit_;
  bool shown_;
  bool terminal_;
  bool drawn_ = false;
  Clock::time_point start_;
  Clock::time_point last_;
};

// 1536 -> "1.5 KiB"
std::string size_text(double bytes);
// 3725 -> "1:02:05"
std::string duration_text(double seconds);

}  // namespace plx::tool

#endif
