// Containers and text helpers, as random programs beside naive models.
//
// The first byte chooses the container; the rest are calls, some of which find memory short.
// After every call must hold:
//  - the result, the record and everything it holds are the model's;
//  - what was released is what the model released, in the same order.
#include "container/programs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plx_fuzz;
  constexpr void (*kRuns[])(Program&) = {run_array, run_hash_table, run_buffer_list,
                                         run_string_array, run_text};
  Program program(data, size < 1024 ? size : 1024);
  kRuns[program.below(sizeof kRuns / sizeof *kRuns)](program);
  return 0;
}
