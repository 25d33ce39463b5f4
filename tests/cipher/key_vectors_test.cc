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
  const char* name;
  tagKeyVectorFunction get;
  const char* sample_digest;  // SHA-256 of the vector, with the sample secrets
};
const VectorRow kRows[] = {
    {"encrypt_stb_key", getVectorForSTBEncyptInitKey,
     "99FAE0F9BA8AED9957A58D56E8633F204838EE56FAD69FEB02B58A2CE9862934"},
    {"aes_prefix_key", getVectorForCipherPrefixInitKey,
     "65C700CEF61F2C862176F79CB56FDDCF157832DBE760E901E255DE7B1C9E384A"},
    {"whitelist_key", getVectorForWhiteListInitKey,
     "505EE5C98AC34D4A6D4D6C4B203A131068A5E03441AB11301324915BF8E7760B"},
    {"pvr_file_key", getVectorForPVRFileInitKey,
     "1494036CEA33B28CE09B18A065188CCE8A7EEB7D49297EA64025259849D39B63"},
    {"epg_profile_key", getVectorForEPGProfileEncyptInitKey,
     "6E48E75173FF0BB4C3619A2E183914C9A7732EEB48AFC929BC0163ED3CE8F38F"},
    {"update", getVectorForUpdateSTBInitKey,
     "91DF9082B062C217910F4204A44BC8AFCEE05AC9F1E6E5BCCC8ECA77DF9A6FE3"},
    {"instance", getInitVector, "2B572D1E9E94C546A8CE74D8AC3877CCE7B0C0527FFAA4CCC3D1D08C325502EA"},
};

// Sets the box identifier for a scope.
class BoxIdentifier {
 public:
  explicit BoxIdentifier(const std::string& id) {
    memset(g_szStbId, 0, sizeof g_szStbId);
    memcpy(g_szStbId, id.data(), id.size());
  }
  ~BoxIdentifier() { memset(g_szStbId, 0, sizeof g_szStbId); }
};

std::string vector_of(const VectorRow& row) {
  unsigned char out[16] = {};
  EXPECT_EQ(out, row.get(out, sizeof out));
  return std::string(reinterpret_cast<char*>(out), sizeof out);
}

TEST(KeyVectors, SizesAndDigests) {
  std::set<std::string> different;
  for (unsigned i = 0; i < 7; ++i) {
    const VectorRow& row = kRows[i];
    SCOPED_TRACE(row.name);
    const std::string vector = vector_of(row);
    different.insert(vector);
    EXPECT_TRUE(!secrets_are_samples() || row.sample_digest == sha256_hex(vector.data(), 16))
        << sha256_hex(vector.data(), 16);
    for (unsigned size : {0u, 15u, 16u, 64u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(size);
      std::string out(64, '.');
      const bool taken = size >= 16 && size <= 0x7FFFFFFF;  // the size counts as signed
      EXPECT_EQ(taken ? bytes(out) : nullptr, row.get(bytes(out), size));
      EXPECT_TRUE(out == (taken ? vector : std::string(16, '.')) + std::string(48, '.'));
      std::string by_index(64, '.');
      const bool is_row = i < 5;
      EXPECT_EQ(taken && is_row ? bytes(by_index) : nullptr,
                getVectorForInitKeyByIndex(is_row ? i : i + 0x80000000u, bytes(by_index), size));
      EXPECT_TRUE(by_index == (taken && is_row ? out : std::string(64, '.')));
    }
    EXPECT_EQ(nullptr, row.get(nullptr, 16));
    EXPECT_EQ(nullptr, getVectorForInitKeyByIndex(i, nullptr, 16));
  }
  EXPECT_EQ(7u, different.size());
}

TEST(KeyVectors, BoxIdentifierEntersOneBackToFront) {
  std::string before[7];
  for (int i = 0; i < 7; ++i) before[i] = vector_of(kRows[i]);
  std::string long_id = "\xF0";
  while (long_id.size() < 64) long_id += static_cast<char>('!' + long_id.size());
  for (size_t length : {0, 1, 2, 15, 16, 17, 63, 64}) {  // 64: without a terminator
    SCOPED_TRACE(length);
    const std::string id = long_id.substr(0, length);
    const BoxIdentifier box(id);
    for (int i = 0; i < 7; ++i) {
      std::string expected = before[i];
      if (i == 4) {
        for (size_t j = 1; j < 16 && j <= length; ++j) {
          expected[j] = static_cast<char>(expected[j] + id[length - j]);
        }
      }
      EXPECT_TRUE(expected == vector_of(kRows[i])) << kRows[i].name;
    }
  }
}

TEST(KeyVectors, NoSecretStandsWholeInTheLibrary) {
  std::string library;
  FILE* file = fopen(PLX_LIBRARY_FILE, "rb");
  ASSERT_NE(nullptr, file);
  char piece[4096];
  while (const size_t n = fread(piece, 1, sizeof piece, file)) library.append(piece, n);
  fclose(file);
  ASSERT_NE(std::string::npos,
            library.find(default_iv_prefix()));  // the search finds what is there
  for (const VectorRow& row : kRows) {
    EXPECT_EQ(std::string::npos, library.find(vector_of(row))) << row.name;
  }
  EXPECT_EQ(std::string::npos, library.find(std::string(default_iv_prefix()) + iv_suffix()));
}

TEST(KeyVectors, FingerprintCoversEverySecret) {
  std::string all;
  for (const char* text : {key_suffix(), iv_suffix(), default_iv_prefix()}) {
    all.append(text, strlen(text) + 1);
  }
  for (const VectorRow& row : kRows) all += vector_of(row);
  const BoxIdentifier box("STB-000123");  // belongs to the box, not to the secrets
  unsigned char out[kFingerprintSize];
  ASSERT_TRUE(fingerprint_secrets(out));
  EXPECT_EQ(sha256_hex(all.data(), all.size()), to_hex(out, sizeof out));
}

}  // namespace
