// The class table as a host sees it that was built long ago: which slots there are, and in which
// order.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <plx/container.h>

#include <new>

namespace {

using Destructor = void (*)(StringArray*);

TEST(StringArrayTable, HoldsTheTwoDestructorsAndNothingElse) {
  void* const table = dlsym(RTLD_DEFAULT, "_ZTV11StringArray");
  ASSERT_NE(nullptr, table);
  Dl_info info;
  const ElfW(Sym) * symbol;
  ASSERT_NE(0, dladdr1(table, &info, reinterpret_cast<void**>(const_cast<ElfW(Sym)**>(&symbol)),
                       RTLD_DL_SYMENT));
#ifndef PLX_TEST_SANITIZED  // which pads what is global
  EXPECT_EQ(4 * sizeof(void*), symbol->st_size);
#endif
  void* const* const slots = static_cast<void**>(table);
  EXPECT_EQ(nullptr, slots[0]);  // the distance to the whole object
  EXPECT_EQ(nullptr, slots[1]);  // no run-time type information
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "_ZN11StringArrayD1Ev"), slots[2]);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "_ZN11StringArrayD0Ev"), slots[3]);
  EXPECT_EQ(nullptr, dlsym(RTLD_DEFAULT, "_ZTI11StringArray"));

  alignas(StringArray) unsigned char memory[sizeof(StringArray)];
  auto* const array = new (memory) StringArray;
  EXPECT_EQ(slots + 2, *reinterpret_cast<void***>(array));
  reinterpret_cast<Destructor>(slots[2])(array);  // would crash if it freed the memory
  delete new StringArray;
}

}  // namespace
