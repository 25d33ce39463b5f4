// The array's own quicksort. Callers see which element is the pivot and what is swapped in the
// order of elements that compare equal, so both stay as they are.
#include <plx/container.h>

#include <utility>

namespace plx::container {
namespace {

using Compare = int (*)(const void*, const void*);

// Splits the slots from `lo` to `hi` by the middle element: smaller ones come to stand before it,
// the others behind. Returns its slot.
int split(void** items, int lo, int hi, Compare compare) {
  std::swap(items[lo], items[lo + (hi - lo) / 2]);
  void* const pivot = items[lo];
  int last = lo;  // of the elements below the pivot
  for (int i = lo + 1; i <= hi; ++i) {
    // Swaps slot `i` with the first of the larger ones if it is smaller, without a branch: on
    // unsorted input every other one would be mispredicted.
    void* const element = items[i];
    void* const larger = items[last + 1];
    const bool smaller = compare(element, pivot) < 0;
    items[i] = smaller ? larger : element;
    items[last + 1] = smaller ? element : larger;
    last += smaller;
  }
  std::swap(items[lo], items[last]);
  return last;
}

void sort_range(void** items, int lo, int hi, Compare compare) {
  while (lo < hi) {
    const int middle = split(items, lo, hi, compare);
    // The smaller side goes into the recursion, so that its depth stays within log2(n).
    if (middle - lo < hi - middle) {
      sort_range(items, lo, middle - 1, compare);
      lo = middle + 1;
    } else {
      sort_range(items, middle + 1, hi, compare);
      hi = middle - 1;
    }
  }
}

}  // namespace
}  // namespace plx::container

extern "C" void PLX_array_sort(PLX_array* array, int (*compare)(const void*, const void*)) {
  if (array == nullptr || array->items == nullptr || compare == nullptr) return;
  plx::container::sort_range(array->items, 0, array->count - 1, compare);
}
