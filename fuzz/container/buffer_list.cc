#include <plx/container.h>
#include <stdio.h>

#include <algorithm>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "programs.h"
#include "support/allocation.h"

namespace plx_fuzz {
namespace {

struct Model {
  std::vector<void*> pool;  // last in, first out
  std::deque<std::pair<void*, int>> queue;
};

void check_take_and_push(PLX_bufList* list, Model* model, Program& program, void* foreign) {
  void* buf = nullptr;
  if (model->pool.empty()) {
    CHECK(PLX_bufList_getUseableBuf(list, &buf) == -2);
    return;
  }
  CHECK(PLX_bufList_getUseableBuf(list, &buf) == 0);
  CHECK(buf == model->pool.back());
  model->pool.pop_back();
  CHECK(PLX_bufList_push_back(list, buf, list->bufSize + 1) == -3);
  CHECK(PLX_bufList_push_back(list, nullptr, 0) == -1);
  // A foreign pointer takes the place of the buffer from then on.
  if (program.one_in(16)) buf = foreign;
  const int len = std::min(program.index(list->bufSize), list->bufSize);
  CHECK(PLX_bufList_push_back(list, buf, len) == 0);
  model->queue.push_back({buf, len});
}

void check_front(PLX_bufList* list, Model* model, bool pops, void* foreign) {
  void* buf = foreign;
  int len = -7;
  const int code =
      pops ? PLX_bufList_pop_front(list, &buf, &len) : PLX_bufList_front(list, &buf, &len);
  CHECK(code == (model->queue.empty() ? -1 : 0));
  CHECK(buf == (model->queue.empty() ? foreign : model->queue.front().first));
  CHECK(len == (model->queue.empty() ? -7 : model->queue.front().second));
  if (!pops || model->queue.empty()) return;
  model->pool.push_back(buf);
  model->queue.pop_front();
}

// Creates a list, perhaps with an allocation failing, and holds the printed line to the outcome.
PLX_bufList* checked_init(int num_bufs, int buf_size, size_t fail_at) {
  char printed[64] = {};
  FILE* const real = stdout;
  stdout = fmemopen(printed, sizeof printed, "w");
  PLX_bufList* list;
  {
    const plx_test::AllocationFault fault(fail_at);
    list = PLX_bufList_init(num_bufs, buf_size);
  }
  fclose(stdout);
  stdout = real;
  const bool fits = int64_t{num_bufs} * buf_size <= 0x7FFFFFFF;
  const std::string line = fail_at == 1                            ? "30 line,error!\n"
                           : fail_at == 2 || num_bufs < 1          ? "38 line,error!\n"
                           : fail_at == 3 || buf_size < 1 || !fits ? "44 line\n"
                                                                   : "65 line\n";
  CHECK(printed == "PLX_bufList_init at " + line);
  CHECK((list != nullptr) == (line == "65 line\n"));
  return list;
}

}  // namespace

void run_buffer_list(Program& program) {
  const int num_bufs = static_cast<int>(program.below(9)) - (program.one_in(32) ? 8 : 0);
  int buf_size = program.one_in(32) ? program.index(1) : static_cast<int>(program.below(40));
  if (num_bufs == 1 && buf_size == INT_MAX) buf_size = 1024;  // two gigabytes would be granted
  PLX_bufList* list = checked_init(num_bufs, buf_size, program.below(16));
  if (list == nullptr) return;
  Model model;
  for (int i = num_bufs; i-- > 0;) {
    CHECK(list->nodes[i].len == buf_size);
    CHECK(list->nodes[i].buf == list->data + i * buf_size);
    model.pool.push_back(list->nodes[i].buf);
  }
  for (int i = 0; i < num_bufs * buf_size; ++i) CHECK(list->data[i] == 0);
  char foreign = 0;
  while (!program.done()) {
    const size_t op = program.below(16);
    if (op == 0) {
      CHECK(PLX_bufList_clearAllBufList(list) == 0);
      for (; !model.queue.empty(); model.queue.pop_front()) {
        model.pool.push_back(model.queue.front().first);
      }
    } else if (op < 8) {
      check_front(list, &model, op % 2 == 0, &foreign);
    } else {
      check_take_and_push(list, &model, program, &foreign);
    }
    CHECK(list->usedCount == static_cast<int>(model.queue.size()));
  }
  PLX_bufList_realse(list);
}

}  // namespace plx_fuzz
