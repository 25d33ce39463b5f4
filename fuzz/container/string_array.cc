#include <plx/container.h>
#include <string.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "programs.h"
#include "support/allocation.h"

namespace plx_fuzz {
namespace {

// Entries that a growth lost are empty optionals, which also sort first. `slots` is what the block
// holds, which a failed growth leaves behind the capacity.
struct Model {
  std::vector<std::optional<std::string>> entries;
  int capacity = 0;
  int slots = 0;

  bool grow(bool memory_short) {
    if (capacity > INT_MAX / 2) return false;
    capacity = capacity == 0 ? 16 : 2 * capacity;
    if (memory_short) return false;
    slots = capacity;
    // The copy of the entries is refused unless they fit as many bytes as there are slots.
    if (entries.size() * sizeof(char*) > static_cast<size_t>(capacity)) {
      std::fill(entries.begin(), entries.end(), std::nullopt);
    }
    return true;
  }
  int push_back(const std::string& text, size_t fail_at) {
    const bool full = static_cast<int>(entries.size()) == slots;
    if (full && !grow(fail_at == 1)) return 0;
    if (fail_at == (full ? 2 : 1)) return 0;
    entries.push_back(text);
    return 1;
  }
};

// A growth loses the entries; they are freed here, for nobody else does.
void check_push_back(StringArray* array, Model* model, const std::string& text, size_t fail_at) {
  const std::vector<char*> held(array->entries, array->entries + array->size);
  int code;
  {
    const plx_test::AllocationFault fault(fail_at);
    code = array->push_back(text.c_str());
  }
  for (size_t i = 0; i < held.size(); ++i) {
    if (array->entries[i] != held[i]) delete[] held[i];
  }
  CHECK(code == model->push_back(text, fail_at));
}

void check_erase(StringArray* array, Model* model, int index) {
  const bool inside = index >= 0 && index < array->size;
  const char* const last = inside ? array->entries[array->size - 1] : nullptr;
  array->erase(index);
  if (!inside) return;
  model->entries.erase(model->entries.begin() + index);
  // The slot that falls out of use keeps its pointer, unless the entry itself stood there.
  CHECK(array->entries[array->size] == (index < array->size ? last : nullptr));
}

void check_set_entry(StringArray* array, Model* model, Program& program, int index) {
  const std::string text = program.text(20, "abc");
  const bool inside = index >= 0 && index < array->size;
  if (inside && model->entries[index].has_value() && program.one_in(4)) {
    // A part of the entry itself.
    const size_t skip = program.below(model->entries[index]->size() + 1);
    array->setEntry(index, array->entries[index] + skip);
    model->entries[index]->erase(0, skip);
    return;
  }
  const bool memory_short = program.one_in(16);
  {
    const plx_test::AllocationFault fault(memory_short ? 1 : 0);
    array->setEntry(index, text.c_str());
  }
  if (inside && !memory_short) model->entries[index] = text;
}

void check_same(const StringArray& array, const Model& model) {
  CHECK(array.capacity == model.capacity);
  CHECK(array.size == static_cast<int>(model.entries.size()));
  for (int i = 0; i < array.size; ++i) {
    const std::optional<std::string>& entry = model.entries[i];
    CHECK((array.entries[i] != nullptr) == entry.has_value());
    CHECK(!entry.has_value() || *entry == array.entries[i]);
  }
}

}  // namespace

void run_string_array(Program& program) {
  StringArray array;
  Model model;
  while (!program.done() && model.capacity < 1024) {
    const int index = program.index(array.size);
    switch (program.below(8)) {
      case 0:
        check_erase(&array, &model, index);
        break;
      case 1:
        check_set_entry(&array, &model, program, index);
        break;
      case 2:
        array.sort(StringArray::cmpAscendingAlpha);
        std::sort(model.entries.begin(), model.entries.end());
        break;
      default:
        check_push_back(&array, &model, program.text(20, "abc"), program.below(24));
    }
    check_same(array, model);
  }
}

}  // namespace plx_fuzz
