// The array's own quicksort. Callers see which element is the pivot and what is swapped in the
// order of elements that compare equal, so both stay as they are.
#include <plx/container.h>
#include <stdint.h>

#include <utility>

namespace plx::container {
namespace {

using Compare = int (*)(const void*, const void*);

// `b` if `condition`, else `a`, without a branch: on unsorted input every other one would be
// mispredicted.
void* select(bool condition, void* a, void* b) {
  const uintptr_t x = reinterpret_cast<uintptr_t>(a), y = reinterpret_cast<uintptr_t>(b);
  return reinterpret_cast<void*>(x ^ ((x ^ y) & (0 - static_cast<uintptr_t>(condition))));
}

// Splits the slots from `first` to before `end` by the middle element: smaller ones come to stand
// before it, the others behind. Returns its slot.
void** split(void** first, void** end, Compare compare) {
  std::swap(*first, first[(end - first - 1) / 2]);
  void* const pivot = *first;
  void** last = first;      // of the elements below the pivot
  void* larger = first[1];  // what stands behind it; kept here, for reading it back would wait
  for (void** slot = first + 1; slot < end; ++slot) {
    void* const element = *slot;
    const bool smaller = compare(element, pivot) < 0;
    // Swapped if smaller.
    *slot = select(smaller, element, larger);
    last[1] = select(smaller, larger, element);
    larger = select(smaller, larger, last + 2 < end ? last[2] : nullptr);
    last += smaller;
  }
  std::swap(*first, *last);
  return last;
}

void sort_range(void** first, void** end, Compare compare) {
  while (end - first > 1) {
    void** const middle = split(first, end, compare);
    // The smaller side goes into the recursion, so that its depth stays within log2(n).
    if (middle - first < end - middle) {
      sort_range(first, middle, compare);
      first = middle + 1;
    } else {
      sort_range(middle + 1, end, compare);
      end = middle;
    }
  }
}

}  // namespace
}  // namespace plx::container

extern "C" void PLX_array_sort(PLX_array* array, int (*compare)(const void*, const void*)) {
  if (array == nullptr || array->items == nullptr || compare == nullptr) return;
  plx::container::sort_range(array->items, array->items + array->count, compare);
}
