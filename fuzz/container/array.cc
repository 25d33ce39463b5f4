#include <plx/container.h>

#include <algorithm>
#include <vector>

#include "programs.h"
#include "support/allocation.h"

namespace plx_fuzz {
namespace {

std::vector<void*> released;
void record_release(void* element) { released.push_back(element); }

int compare_ints(const void* a, const void* b) {
  const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
  return x < y ? -1 : x > y;
}

// The array as one would write it without a thought for speed. Slots that a failed growth lost are
// `lost` until the next call that needs one.
struct Model {
  std::vector<void*> slots;
  int count = 0;
  bool lost = false;
  std::vector<void*> released;

  bool ensure(int64_t needed, bool memory_short) {
    const auto capacity = static_cast<int64_t>(slots.size());
    if (needed <= capacity && !lost) return true;
    const int64_t wanted = std::max((needed + 15) / 16 * 16, capacity);
    if (wanted > INT_MAX) return false;
    if (memory_short || wanted > 0x7FFFFFFF / static_cast<int64_t>(sizeof(void*))) {
      lost = true;
      return false;
    }
    slots.resize(lost ? 0 : static_cast<size_t>(count));
    slots.resize(static_cast<size_t>(wanted));
    lost = false;
    return true;
  }
  bool holds(int i) const { return !lost && i >= 0 && i < count; }
  void release(int i) {
    if (slots[i] != nullptr) released.push_back(slots[i]);
    slots[i] = nullptr;
  }
  int insert(void* element, int at, bool memory_short) {
    if (!ensure(int64_t{count} + 1, memory_short)) return -1;
    at = std::clamp(at, 0, count);
    for (int i = count++; i > at; --i) slots[i] = slots[i - 1];
    slots[at] = element;
    return 0;
  }
  int pre_append(int n, bool memory_short) {
    return n <= 0 || ensure(int64_t{count} + n, memory_short) ? 0 : -1;
  }
  int modify(int i, void* element, bool memory_short) {
    if (element == nullptr || i < 0 || i > count) return -1;
    if (!ensure(int64_t{i} + 1, memory_short)) return -1;
    release(i);
    slots[i] = element;
    return 0;
  }
  void remove(int i) {
    slots[i] = nullptr;
    for (; i + 1 < count; ++i) slots[i] = slots[i + 1];
    --count;
  }
  int move(int from, int to) {
    if (from < 0 || to < 0) return -1;
    from = std::min(from, count - 1), to = std::min(to, count - 1);
    if (from != to && lost) return -1;
    for (; from < to; ++from) std::swap(slots[from], slots[from + 1]);
    for (; from > to; --from) std::swap(slots[from], slots[from - 1]);
    return 0;
  }
  int find(int key) const {
    for (int i = 0; i < count && !lost; ++i) {
      if (slots[i] != nullptr && *static_cast<int*>(slots[i]) == key) return i;
    }
    return -1;
  }
  // Step by step, with every swap that shows in the order of equal elements.
  void sort(int lo, int hi) {
    if (lo >= hi) return;
    std::swap(slots[lo], slots[(lo + hi) / 2]);
    int last = lo;
    for (int i = lo + 1; i <= hi; ++i) {
      if (compare_ints(slots[i], slots[lo]) < 0) std::swap(slots[++last], slots[i]);
    }
    std::swap(slots[lo], slots[last]);
    sort(lo, last - 1);
    sort(last + 1, hi);
  }
  bool has_null() const {
    return std::find(slots.begin(), slots.begin() + count, nullptr) != slots.begin() + count;
  }
};

void check_same(const PLX_array* array, const Model& model) {
  CHECK(PLX_array_getCount(array) == model.count);
  CHECK(array->capacity == static_cast<int>(model.slots.size()));
  CHECK((array->items == nullptr) == (model.lost || model.slots.empty()));
  CHECK(array->items == nullptr ||
        std::equal(model.slots.begin(), model.slots.end(), array->items));
  CHECK(model.released == released);
}

// The array becomes a copy of itself; the slots behind the last element are not the copy's.
PLX_array* replace_by_copy(PLX_array* array, Model* model, size_t fail_at) {
  PLX_array* copy;
  bool memory_short;
  {
    const plx_test::AllocationFault fault(fail_at);
    copy = PLX_array_createFromArray(array);
    memory_short = fault.hit();
  }
  CHECK((copy == nullptr) == (memory_short || model->lost || model->count == 0));
  if (copy == nullptr) return array;
  PLX_array_destroyWithoutClean(array);
  model->slots.resize(static_cast<size_t>(model->count));
  return copy;
}

// A call that may need room; one in so many finds none. The model's own memory is not short.
void change(PLX_array* array, Model* model, Program& program, void* element) {
  const int index = program.index(model->count);
  const bool fails = program.one_in(16);
  const size_t op = program.below(5);
  int code;
  bool memory_short;
  {
    const plx_test::AllocationFault fault(fails ? 1 : 0);
    code = op == 0   ? PLX_array_insert(array, element, index)
           : op == 1 ? PLX_array_modify(array, index, element)
           : op == 2 ? PLX_array_preAppend(array, index)
                     : PLX_array_append(array, element);
    memory_short = fault.hit();
  }
  const int expected = op == 0   ? model->insert(element, index, memory_short)
                       : op == 1 ? model->modify(index, element, memory_short)
                       : op == 2 ? model->pre_append(index, memory_short)
                                 : model->insert(element, INT_MAX, memory_short);
  CHECK(code == expected);
}

}  // namespace

void run_array(Program& program) {
  int pool[32];
  for (int i = 0; i < 32; ++i) pool[i] = i / 2;
  released.clear();
  released.reserve(8192);  // so that nothing is allocated while memory is short
  PLX_array* array = PLX_array_create(record_release);
  Model model;
  while (!program.done()) {
    void* const element = program.one_in(8) ? nullptr : &pool[program.below(32)];
    const int index = program.index(model.count);
    switch (program.below(12)) {
      case 0:
        PLX_array_delete(array, index);
        if (model.holds(index)) model.release(index), model.remove(index);
        break;
      case 1:
        PLX_array_deleteWithoutClean(array, index);
        if (model.holds(index)) model.remove(index);
        break;
      case 2: {
        const int to = program.index(model.count);
        CHECK(PLX_array_move(array, index, to) == model.move(index, to));
        break;
      }
      case 3:
        CHECK(PLX_array_find(array, &index, compare_ints) == model.find(index));
        CHECK(PLX_array_getIndex(array, index) ==
              (model.holds(index) ? model.slots[index] : nullptr));
        break;
      case 4:
        if (model.lost || model.has_null()) break;
        PLX_array_sort(array, compare_ints);
        model.sort(0, model.count - 1);
        break;
      case 5: {
        const int other = program.index(model.count);
        if (!model.holds(index) || !model.holds(other)) break;
        PLX_array_exchangeElement(array, index, other);
        std::swap(model.slots[index], model.slots[other]);
        break;
      }
      case 6:
        array = replace_by_copy(array, &model, program.below(8));
        break;
      case 7:
        if (!program.one_in(8)) break;
        PLX_array_clean(array);
        if (model.lost) break;
        for (int i = 0; i < model.count; ++i) model.release(i);
        model.slots.clear(), model.count = 0;
        break;
      default:
        change(array, &model, program, element);
    }
    check_same(array, model);
  }
  for (int i = 0; i < model.count && !model.lost; ++i) model.release(i);
  PLX_array_destroy(array);
  CHECK(model.released == released);
}

}  // namespace plx_fuzz
