#include <gtest/gtest.h>
#include <plx/key_store.h>
#include <stdio.h>
#include <string.h>

#include <set>
#include <string>

#include "cipher/secrets.h"
#include "cipher/support.h"

namespace {

using namespace plx_test;
using namespace plx::cipher;

struct VectorRow {
  tagKeyVectorFunction get;
  const char* sample_digest;  // SHA-256 of the vector, with the sample secrets
};
const VectorRow kRows[] = {
    {getVectorForSTBEncyptInitKey,
     "99FAE0F9BA8AED9957A58D56E8633F204838EE56FAD69FEB02B58A2CE9862934"},
    {getVectorForCipherPrefixInitKey,
     "65C700CEF61F2C862176F79CB56FDDCF157832DBE760E901E255DE7B1C9E384A"},
    {getVectorForWhiteListInitKey,
     "505EE5C98AC34D4A6D4D6C4B203A131068A5E03441AB11301324915BF8E7760B"},
    {getVectorForPVRFileInitKey,
     "1494036CEA33B28CE09B18A065188CCE8A7EEB7D49297EA64025259849D39B63"},
    {getVectorForEPGProfileEncyptInitKey,
     "6E48E75173FF0BB4C3619A2E183914C9A7732EEB48AFC929BC0163ED3CE8F38F"},
    {getVectorForUpdateSTBInitKey,
     "91DF9082B062C217910F4204A44BC8AFCEE05AC9F1E6E5BCCC8ECA77DF9A6FE3"},
    {getInitVector, "2B572D1E9E94C546A8CE74D8AC3877CCE7B0C0527FFAA4CCC3D1D08C325502EA"},
};

// No vector is printed when a test fails: comparisons are EXPECT_TRUE.
std::string vector_of(const VectorRow& row) {
  std::string out(16, '.');
  row.get(bytes_of(out), 16);
  return out;
}

void set_box_identifier(const std::string& id) {
  memset(g_szStbId, 0, sizeof g_szStbId);
  memcpy(g_szStbId, id.data(), id.size());
}

TEST(KeyVectors, SizesAndDigests) {
  std::set<std::string> different;
  for (unsigned i = 0; i < 7; ++i) {
    SCOPED_TRACE(i);
    const std::string vector = vector_of(kRows[i]), untouched(64, '.');
    different.insert(vector);
    EXPECT_TRUE(!secrets_are_samples() ||
                kRows[i].sample_digest == to_hex(judge_digest("SHA256", vector)));
    for (unsigned size : {0u, 15u, 16u, 64u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
      const bool taken = size >= 16 && size <= 0x7FFFFFFF;  // the size counts as signed
      std::string out = untouched;
      EXPECT_EQ(taken ? bytes_of(out) : nullptr, kRows[i].get(bytes_of(out), size)) << size;
      EXPECT_TRUE(out == (taken ? vector + std::string(48, '.') : untouched));
      std::string by_index = untouched;  // the last two belong to no row
      EXPECT_EQ(taken && i < 5 ? bytes_of(by_index) : nullptr,
                getVectorForInitKeyByIndex(i < 5 ? i : i + 0x80000000u, bytes_of(by_index), size));
      EXPECT_TRUE(by_index == (i < 5 ? out : untouched));
    }
    EXPECT_EQ(nullptr, kRows[i].get(nullptr, 16));
    EXPECT_EQ(nullptr, getVectorForInitKeyByIndex(i, nullptr, 16));
  }
  EXPECT_EQ(7u, different.size());
}

TEST(KeyVectors, BoxIdentifierEntersOneBackToFront) {
  std::string id = "\xF0", before[7];
  while (id.size() < 64) id += static_cast<char>('!' + id.size());
  for (int i = 0; i < 7; ++i) before[i] = vector_of(kRows[i]);
  for (size_t len : {1, 2, 15, 16, 17, 63, 64, 0}) {  // 64: without a terminator
    set_box_identifier(id.substr(0, len));
    for (int i = 0; i < 7; ++i) {
      std::string expected = before[i];
      for (size_t j = 1; i == 4 && j < 16 && j <= len; ++j) {
        expected[j] = static_cast<char>(expected[j] + id[len - j]);
      }
      EXPECT_TRUE(expected == vector_of(kRows[i])) << i << " " << len;
    }
  }
}

TEST(KeyVectors, NoSecretStandsWholeInTheLibrary) {
  std::string library(16 << 20, '\0');
  FILE* file = fopen(PLX_LIBRARY_FILE, "rb");
  ASSERT_NE(nullptr, file);
  library.resize(fread(&library[0], 1, library.size(), file));
  EXPECT_TRUE(feof(file));
  fclose(file);
  EXPECT_NE(std::string::npos,
            library.find(default_iv_prefix()));  // the search finds what is there
  EXPECT_EQ(std::string::npos, library.find(std::string(default_iv_prefix()) + iv_suffix()));
  for (const VectorRow& row : kRows) EXPECT_TRUE(library.find(vector_of(row)) == std::string::npos);
}

TEST(KeyVectors, FingerprintCoversEverySecret) {
  std::string all, out(kFingerprintSize, '.');
  for (const char* text : {key_suffix(), iv_suffix(), default_iv_prefix()}) {
    all.append(text, strlen(text) + 1);
  }
  for (const VectorRow& row : kRows) all += vector_of(row);
  set_box_identifier("STB-000123");  // belongs to the box, not to the secrets
  ASSERT_TRUE(fingerprint_secrets(bytes_of(out)));
  EXPECT_EQ(to_hex(judge_digest("SHA256", all)), to_hex(out));
  set_box_identifier("");
}

}  // namespace
