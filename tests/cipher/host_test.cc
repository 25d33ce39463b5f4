// A host program that brings its own copy of a data symbol, and repoints the table of keys.
#include <gtest/gtest.h>
#include <plx/key_store.h>
#include <string.h>

char g_szStbId[64] = "";

// The address sanitizer, where there is one, takes two copies for a mistake.
extern "C" const char* __asan_default_options() { return "detect_odr_violation=0"; }

namespace {

TEST(CipherHost, ItsBoxIdentifierIsTheOneThatIsRead) {
  unsigned char without[16], with[16];
  getVectorForEPGProfileEncyptInitKey(without, 16);
  strcpy(g_szStbId, "A");
  getVectorForEPGProfileEncyptInitKey(with, 16);
  EXPECT_EQ(static_cast<unsigned char>(without[1] + 'A'), with[1]);
}

TEST(CipherHost, ItsRowsAreTheOnesThatAreRead) {
  g_stKeyMap[3].pszKeyName = "another_name";
  EXPECT_EQ(3, getIndexValueSetByName("another_name"));
  EXPECT_EQ(-1, getIndexValueSetByName("pvr_file_key"));
}

}  // namespace
