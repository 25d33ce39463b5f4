// Every call of the table with the first, second, ... step of each kind refused, once and from then
// on, until a run meets no refusal.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

#include "failure/calls.h"
#include "failure/faults.h"
#include "support/allocation.h"
#include "support/leaks.h"

namespace {

using namespace plx_test;

struct Run {
  Answer answer;
  bool hit;
  bool leaked;
  bool libcrypto_crashed;
};

constexpr int kLibcryptoCrashed = 16;  // an exit code

void* crashed_at(const void* context) {
  const mcontext_t& machine = static_cast<const ucontext_t*>(context)->uc_mcontext;
#ifdef __x86_64__
  return reinterpret_cast<void*>(machine.gregs[REG_RIP]);
#elif defined(__i386__)
  return reinterpret_cast<void*>(machine.gregs[REG_EIP]);
#else
  return reinterpret_cast<void*>(machine.arm_pc);
#endif
}

// libcrypto crashes when it is set up without memory. A crash of ours ends the process by its
// signal.
void on_crash(int, siginfo_t*, void* context) {
  Dl_info place;
  if (dladdr(crashed_at(context), &place) != 0 && strstr(place.dli_fname, "/libcrypto.so")) {
    _exit(kLibcryptoCrashed);
  }
  signal(SIGSEGV, SIG_DFL);
}

Run run_once(const Call& call, Step step, size_t fail_at, bool all_later) {
  const int descriptor = lowest_free_descriptor();
  AllocationFault memory(step == Step::kMemory ? fail_at : 0, all_later);
  StepFault other(step, fail_at, all_later);
  Run run = {call.run(), memory.hit() || other.hit(), false, false};
  run.leaked = memory.live_blocks() != 0 || lowest_free_descriptor() != descriptor;
  return run;
}

// The same in a child process.
Run run_apart(const Call& call, Step step, size_t fail_at, bool all_later) {
  const pid_t child = fork();
  if (child == 0) {
    struct sigaction crash = {};
    crash.sa_sigaction = on_crash;
    crash.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &crash, nullptr);
    const Run run = run_once(call, step, fail_at, all_later);
    _exit(static_cast<int>(run.answer) | run.hit << 2 | run.leaked << 3);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) abort();
  if (WIFSIGNALED(status)) return {Answer::kWrong, true, false, false};
  const int code = WEXITSTATUS(status);
  if (code == kLibcryptoCrashed) return {Answer::kRefused, true, false, true};
  return {static_cast<Answer>(code & 3), (code & 4) != 0, (code & 8) != 0, false};
}

bool is_allowed(const Call& call, Step step, Answer answer) {
  if (answer == Answer::kRefused) return true;
  if (answer == Answer::kWrong) return false;
  return step != Step::kMemory || call.bears_short_memory;
}

using RunCall = Run (*)(const Call&, Step, size_t, bool);

// Returns how many refusals there were.
size_t sweep(const Call& call, Step step, RunCall run_call) {
  size_t injected = 0, crashed = 0;
  for (bool all_later : {false, true}) {
    for (size_t n = 1;; ++n) {
      const Run run = run_call(call, step, n, all_later);
      injected += run.hit;
      crashed += run.libcrypto_crashed;
      EXPECT_FALSE(run.leaked) << call.name << ": " << kStepNames[static_cast<int>(step)] << " "
                               << n;
      if (!run.hit) {
        EXPECT_EQ(Answer::kDone, run.answer) << call.name;
        break;
      }
      EXPECT_TRUE(is_allowed(call, step, run.answer))
          << call.name << ": " << kStepNames[static_cast<int>(step)] << " " << n
          << (all_later ? " and later" : "") << " gives " << static_cast<int>(run.answer);
      if (testing::Test::HasFailure()) return injected;
    }
  }
  if (crashed != 0) printf("crashes inside libcrypto: %zu in %s\n", crashed, call.name);
  return injected;
}

size_t sweep_all(Step step, RunCall run_call) {
  size_t injected = 0;
  for (const Call& call : kCalls) injected += sweep(call, step, run_call);
  printf("injected: %zu %s\n", injected, kStepNames[static_cast<int>(step)]);
  return injected;
}

void expect_success() {
  for (const Call& call : kCalls) {
    ASSERT_EQ(Answer::kDone, run_once(call, Step::kMemory, 0, false).answer) << call.name;
  }
}

TEST(Failure, EveryStepOfThePlatform) {
  expect_success();
  for (Step step : {Step::kMemory, Step::kOpen, Step::kRead, Step::kShortRead, Step::kPosition,
                    Step::kRandom}) {
    EXPECT_LT(0u, sweep_all(step, run_once));
  }
}

// What libcrypto keeps for later it may allocate in the first round; nothing grows in the second.
TEST(Failure, MemoryOfLibcrypto) {
  expect_success();
  EXPECT_LT(0u, sweep_all(Step::kLibcryptoMemory, run_once));
  const long live = live_libcrypto_blocks();
  sweep_all(Step::kLibcryptoMemory, run_once);
  EXPECT_EQ(live, live_libcrypto_blocks());
}

// Takes minutes: not one of scripts/test, but of scripts/verify. Each run is a process of its own.
TEST(Failure, MemoryOfLibcryptoAtItsFirstUse) {
  EXPECT_LT(0u, sweep_all(Step::kLibcryptoMemory, run_apart));
}

}  // namespace

int main(int argc, char** argv) {
  plx_test::control_libcrypto_memory();
  testing::InitGoogleTest(&argc, argv);
  plx_test::prepare_calls();
  return RUN_ALL_TESTS();
}
